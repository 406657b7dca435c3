# Sundials::Kinsol: the nonlinear solver KINSOL with serial vectors, dense matrices and LAPACK's dense linear solver, as
# cmake/prepare-numerics has prepared them.

if(CMAKE_CROSSCOMPILING)
  set(SYSTEM windows)
else()
  set(SYSTEM native)
endif()
set(NUMERICS ${CMAKE_CURRENT_LIST_DIR}/../build/numerics-${SYSTEM})
if(NOT EXISTS ${NUMERICS}/recipe)
  message(FATAL_ERROR "Run cmake/prepare-numerics ${SYSTEM} first")
endif()

add_library(Sundials::Kinsol INTERFACE IMPORTED)
target_include_directories(Sundials::Kinsol SYSTEM INTERFACE ${NUMERICS}/include)
# Without the definition the headers would import the functions from DLLs.
target_compile_definitions(Sundials::Kinsol INTERFACE SUNDIALS_STATIC_DEFINE)
foreach(library sundials_sunlinsollapackdense sundials_kinsol sundials_nvecserial sundials_sunmatrixdense lapack64)
  target_link_libraries(Sundials::Kinsol INTERFACE ${NUMERICS}/lib/lib${library}.a)
endforeach()
