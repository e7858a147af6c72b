# Installs the build into a scratch prefix, then builds a host against it twice:
# through the CMake package and through pkg-config.
cmake_policy(SET CMP0057 NEW)
set(prefijo "${TEMPORAL}/prefijo")
file(REMOVE_RECURSE "${TEMPORAL}")

function(ejecuta)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE salida ERROR_VARIABLE errores)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "Falló: ${ARGN}\n${salida}\n${errores}")
  endif()
  set(ULTIMA_SALIDA "${salida}" PARENT_SCOPE)
endfunction()

ejecuta(${CMAKE_COMMAND} --install "${CONSTRUCCION}" --prefix "${prefijo}")

ejecuta(${CMAKE_COMMAND} -S "${FUENTE}" -B "${TEMPORAL}/cmake" -G Ninja "-DCMAKE_PREFIX_PATH=${prefijo}")
ejecuta(${CMAKE_COMMAND} --build "${TEMPORAL}/cmake")
ejecuta(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefijo}/${LIBDIR}" "${TEMPORAL}/cmake/consumidor")
if(NOT ULTIMA_SALIDA MATCHES "Tiendanova")
  message(FATAL_ERROR "El consumidor dijo: ${ULTIMA_SALIDA}")
endif()

# The Python package finds the installed library on its own.
find_program(PYTHON3 python3)
if(PYTHON3)
  ejecuta(${CMAKE_COMMAND} -E env --unset=KALO_BIBLIOTECA "PYTHONPATH=${prefijo}/${DIR_PYTHON}"
    "XDG_DATA_HOME=${TEMPORAL}/datos" "XDG_DATA_DIRS=${TEMPORAL}/datos" QT_QPA_PLATFORM=offscreen
    ${PYTHON3} -c "import kaloimpresora\nprint(kaloimpresora.crea('KaloImpresora.Impresora').Replicate('ab', 3))")
  if(NOT ULTIMA_SALIDA MATCHES "ababab")
    message(FATAL_ERROR "El paquete de Python instalado dijo: ${ULTIMA_SALIDA}")
  endif()
endif()

file(GLOB_RECURSE pc "${prefijo}/*/kaloimpresora.pc")
get_filename_component(dir_pc "${pc}" DIRECTORY)
ejecuta(${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${dir_pc}" pkg-config --cflags --libs kaloimpresora)
string(STRIP "${ULTIMA_SALIDA}" banderas)
separate_arguments(banderas UNIX_COMMAND "${banderas}")
ejecuta(c++ -std=c++20 -fPIC "${FUENTE}/principal.cpp" -o "${TEMPORAL}/consumidor-pc" ${banderas})
ejecuta(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${prefijo}/${LIBDIR}" "${TEMPORAL}/consumidor-pc")

# The installed library exports the public API, exactly the C entry points of
# kaloimpresora/kaloimpresora.h, and nothing else; no internal header is
# installed.
set(entradas_c DllRegisterServer DllUnregisterServer DllGetClassObject DllCanUnloadNow
  kalo_guid_de_texto kalo_variant_inicia kalo_variant_limpia kalo_variant_texto kalo_variant_objeto
  kalo_variant_omitido kalo_error_limpia kalo_crea kalo_agrega_referencia kalo_libera kalo_id_de_nombre
  kalo_invoca kalo_describe)
file(GLOB biblioteca "${prefijo}/${LIBDIR}/libkaloimpresora.so.*.*")
ejecuta(nm -DC --defined-only "${biblioteca}")
string(REGEX REPLACE "\n$" "" simbolos "${ULTIMA_SALIDA}")
string(REPLACE "\n" ";" simbolos "${simbolos}")
list(LENGTH simbolos cuantos)
set(entradas_vistas)
foreach(simbolo ${simbolos})
  string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" nombre "${simbolo}")
  if(nombre IN_LIST entradas_c)
    list(APPEND entradas_vistas ${nombre})
  elseif(NOT simbolo MATCHES "kalo::")
    message(FATAL_ERROR "La biblioteca instalada exporta algo ajeno a su API: ${simbolo}")
  endif()
endforeach()
foreach(entrada ${entradas_c})
  if(NOT entrada IN_LIST entradas_vistas)
    message(FATAL_ERROR "La biblioteca instalada no exporta ${entrada}")
  endif()
endforeach()
if(cuantos LESS 50)
  message(FATAL_ERROR "La biblioteca instalada exporta solo ${cuantos} símbolos")
endif()
file(GLOB_RECURSE cabeceras RELATIVE "${prefijo}/include" "${prefijo}/include/*")
foreach(cabecera ${cabeceras})
  if(NOT cabecera MATCHES "^kaloimpresora/[a-z_]+\\.h$")
    message(FATAL_ERROR "Cabecera instalada fuera de la API pública: ${cabecera}")
  endif()
endforeach()
