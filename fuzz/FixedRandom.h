#pragma once

/// Gives OpenSSL the same "random" numbers in every run, so that a handshake which was recorded once plays
/// out the same way again, and an input that breaks something does so every time. Each side of a link draws
/// from a row of its own: who else draws in between makes no difference to it.
class FixedRandom {
 public:
  enum class Side { credentials, headUnit, phone };

  /// Once, before OpenSSL is used for anything else.
  static void install();
  /// From now on numbers are drawn by `side`, which goes on where it stopped.
  static void drawsFor(Side side);
  /// `side` begins anew.
  static void restart(Side side);
};
