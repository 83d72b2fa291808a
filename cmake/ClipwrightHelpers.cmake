# Collects the sources of one folder tree; new files are picked up without editing CMake.
function(clipwright_sources out dir)
  file(GLOB_RECURSE _src CONFIGURE_DEPENDS "${dir}/*.cpp" "${dir}/*.h")
  set(${out} ${_src} PARENT_SCOPE)
endfunction()
