# Tests of paper size, orientation and forms.
target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/prueba_papel.cpp)
