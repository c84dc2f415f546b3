# The product directory as the program reads it: product/ with the help of each command also under
# the other ways to spell its word (VIEW, view, VIEw, VIE, vie). It stands in the build tree, where
# VELMORAN may point to it, and is installed.
set(KIVO_PRODUCT_DIR ${PROJECT_BINARY_DIR}/product)
file(COPY ${PROJECT_SOURCE_DIR}/product/ DESTINATION ${KIVO_PRODUCT_DIR})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/product/kivo/help/words)
file(GLOB_RECURSE product_files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/product/*)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${product_files})

file(STRINGS ${PROJECT_SOURCE_DIR}/product/kivo/help/words words)
foreach(word ${words})
  string(TOUPPER ${word} upper)
  string(TOLOWER ${word} lower)
  string(REGEX REPLACE "[a-z]" "" least ${word})
  string(TOLOWER ${least} lower_least)
  set(typed ${lower} ${word} ${least} ${lower_least})
  list(REMOVE_DUPLICATES typed)
  list(REMOVE_ITEM typed ${upper})
  foreach(name ${typed})
    file(CREATE_LINK kv_1_${upper} ${KIVO_PRODUCT_DIR}/kivo/help/kv_1_${name} SYMBOLIC)
  endforeach()
endforeach()

install(DIRECTORY ${KIVO_PRODUCT_DIR}/ DESTINATION share/velmoran)
