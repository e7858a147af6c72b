# Sources of this area: target_sources(kaloimpresora PRIVATE ${CMAKE_CURRENT_LIST_DIR}/...)
target_sources(kaloimpresora PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/lienzo.cpp
  ${CMAKE_CURRENT_LIST_DIR}/imagen.cpp
  ${CMAKE_CURRENT_LIST_DIR}/superficie_imagen.cpp
  ${CMAKE_CURRENT_LIST_DIR}/caja_de_imagen.cpp
)
