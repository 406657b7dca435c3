# The libraries that the project calls. All of them are headers alone but for GoogleTest and Google Benchmark. For
# Windows the system's headers are reached through links in a folder of their own, for the rest of /usr/include must
# not be seen by the cross-compiler; GoogleTest is built from its sources.

if(CMAKE_CROSSCOMPILING)
  set(HEADERS ${PROJECT_BINARY_DIR}/headers)
  file(MAKE_DIRECTORY ${HEADERS})
  foreach(library boost CLI nlohmann)
    file(CREATE_LINK /usr/include/${library} ${HEADERS}/${library} SYMBOLIC)
  endforeach()
  foreach(target CLI11::CLI11 Eigen3::Eigen nlohmann_json::nlohmann_json)
    add_library(${target} INTERFACE IMPORTED)
    target_include_directories(${target} SYSTEM INTERFACE ${HEADERS} /usr/include/eigen3)
  endforeach()
else()
  find_package(CLI11 REQUIRED)
  find_package(Eigen3 REQUIRED)
  find_package(nlohmann_json REQUIRED)
endif()

if(MORVELAN_TESTS AND CMAKE_CROSSCOMPILING)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
elseif(MORVELAN_TESTS)
  find_package(GTest REQUIRED)
endif()
if(MORVELAN_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
