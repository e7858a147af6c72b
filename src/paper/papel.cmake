# Paper size, orientation and the forms of the print system.
target_sources(kaloimpresora PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/../core/papel.cpp
  ${CMAKE_CURRENT_LIST_DIR}/impresion_nt.cpp
  ${CMAKE_CURRENT_LIST_DIR}/cola_de_impresion.cpp
)
