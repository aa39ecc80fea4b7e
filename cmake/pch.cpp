// Carries the precompiled headers; a target reuses them instead of building its own.
