# Tests of the image-page printer and of suppressed output.
target_sources(pruebas PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/prueba_impresora_de_imagenes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/prueba_suprime.cpp
)
