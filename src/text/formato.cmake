target_sources(kaloimpresora PRIVATE ${CMAKE_CURRENT_LIST_DIR}/formato.cpp)
