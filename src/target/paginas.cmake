# A printer whose pages are images, and what it shares with the system printer.
target_sources(kaloimpresora PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/impresora_comun.cpp
  ${CMAKE_CURRENT_LIST_DIR}/impresora_de_imagenes.cpp
)
