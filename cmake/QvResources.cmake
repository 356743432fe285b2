# qv_add_resources(target script): compiles a resource script with the qvrc
# tool (tools/qvrc) into a C++ source that carries the target's resource table
# and registers it when the target's module loads, and adds that source to the
# target. The module is named after the target; shared and module libraries
# get a library table, everything else a program table. See docs/resources.md.
function(qv_add_resources target script)
  get_filename_component(script "${script}" ABSOLUTE)
  get_target_property(type ${target} TYPE)
  set(kind "")
  if(type STREQUAL "SHARED_LIBRARY" OR type STREQUAL "MODULE_LIBRARY")
    set(kind --library)
  endif()
  set(output "${CMAKE_CURRENT_BINARY_DIR}/${target}_resources.cpp")
  add_custom_command(
    OUTPUT "${output}"
    COMMAND qvrc --module ${target} ${kind} --depfile "${output}.d" "${script}" "${output}"
    DEPENDS qvrc "${script}"
    DEPFILE "${output}.d"
    COMMENT "Compiling the resources of ${target}"
    VERBATIM)
  target_sources(${target} PRIVATE "${output}")
endfunction()
