target_sources(pruebas PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/prueba_letra.cpp
)
