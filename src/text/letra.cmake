target_sources(kaloimpresora PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/importe_en_letra.cpp
  ${CMAKE_CURRENT_LIST_DIR}/aleatorio.cpp
)
