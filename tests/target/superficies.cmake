# Tests of this area: target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/...) or add_test(...)
target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/prueba_superficies.cpp)
