# The product directory as the program reads it. It stands in the build tree, where VELMORAN may
# point to it, and is installed.
set(KIVO_PRODUCT_DIR ${PROJECT_BINARY_DIR}/product)
file(COPY ${PROJECT_SOURCE_DIR}/product/ DESTINATION ${KIVO_PRODUCT_DIR})
file(GLOB_RECURSE product_files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/product/*)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${product_files})

install(DIRECTORY ${KIVO_PRODUCT_DIR}/ DESTINATION share/velmoran)
