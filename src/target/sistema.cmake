# Sources of this area: target_sources(kaloimpresora PRIVATE ${CMAKE_CURRENT_LIST_DIR}/...)
