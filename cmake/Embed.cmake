# Turns binary files into C++ sources that register them as resources of the
# library (see kestrel/frame/platform/Resources.h), so nothing has to sit
# beside the binary at run time. Each source also defines a symbol,
# kestrel_embedded_<type>_<name>, listed in <out_var>_ANCHORS: a program linking
# the static library names them so that the linker keeps the blobs.
function(kestrel_embed_blobs out_var type)
  set(sources)
  set(anchors)
  foreach(blob IN LISTS ARGN)
    get_filename_component(name ${blob} NAME_WE)
    set(out ${CMAKE_CURRENT_BINARY_DIR}/embedded/${type}_${name}.cpp)
    add_custom_command(
      OUTPUT ${out}
      COMMAND ${CMAKE_COMMAND} -DIN=${blob} -DOUT=${out} -DNAME=${name} -DTYPE=${type}
              -P ${PROJECT_SOURCE_DIR}/cmake/EmbedOne.cmake
      DEPENDS ${blob} ${PROJECT_SOURCE_DIR}/cmake/EmbedOne.cmake
      COMMENT "Embedding ${type}/${name}")
    list(APPEND sources ${out})
    list(APPEND anchors kestrel_embedded_${type}_${name})
  endforeach()
  set(${out_var} ${sources} PARENT_SCOPE)
  set(${out_var}_ANCHORS ${anchors} PARENT_SCOPE)
endfunction()
