# quillery_check_layer(TARGET): builds a program from every object of the layer's library and
# only what the layer links, so a call into a layer it may not use fails the build even when no
# program would pull that object in from the archive.
function(quillery_check_layer layer)
  set(main ${CMAKE_CURRENT_BINARY_DIR}/${layer}_links_alone.cpp)
  file(CONFIGURE OUTPUT ${main} CONTENT "int main() { return 0; }\n")
  add_executable(${layer}_links_alone ${main} $<TARGET_OBJECTS:${layer}>)
  target_link_libraries(${layer}_links_alone PRIVATE $<TARGET_PROPERTY:${layer},LINK_LIBRARIES>)
endfunction()
