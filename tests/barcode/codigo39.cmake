# Code 39 drawn bar by bar.
target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/prueba_codigo39.cpp)
