#pragma once

/// OpenSSL's callback for its static locks: locks lock `n` if `mode` has CRYPTO_LOCK, otherwise unlocks it.
/// OpenSSL 1.1 and later lock by themselves and never call it. Any thread.
void sslLockingFunction(int mode, int n, const char* file, int line);

class Mutex;

/// Serialises what touches OpenSSL's configuration for the whole process: the creation of a context reads it
/// and the global clean-up unloads it, while other links of the process come and go.
extern Mutex* opensslConfigurationLock;
