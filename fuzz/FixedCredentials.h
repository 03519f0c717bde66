#pragma once

#include <string>

/// A root, and a certificate by it that serves both sides of a link, as PEM texts; the same in every run.
/// They are valid until 2099.
struct FixedCredentials {
  std::string root;
  std::string certificate;
  std::string key;
};

/// Needs FixedRandom.
const FixedCredentials& fixedCredentials();
