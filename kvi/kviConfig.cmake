# kvi::kvi_shared, kvi::kvi_static, and kvi::kvi, the plain name of the shared library.
include("${CMAKE_CURRENT_LIST_DIR}/kviTargets.cmake")
if(NOT TARGET kvi::kvi)
  add_library(kvi::kvi INTERFACE IMPORTED)
  set_target_properties(kvi::kvi PROPERTIES INTERFACE_LINK_LIBRARIES kvi::kvi_shared)
endif()
