"""The making of the Welcome project: instruments, tune, arrangement, mix and project text."""
