# Replay of spool files and scripts.
target_sources(kaloimpresora PRIVATE ${CMAKE_CURRENT_LIST_DIR}/reproduccion.cpp)
