#pragma once

/// The version that the log lines tell.
constexpr const char* VTP_VERSION = "VTP_1.0_001_160829";
