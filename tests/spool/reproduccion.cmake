# Tests of replay.
