# Replay of spool files and scripts.
