# The version stands once, in project(); programs that print it link this.
add_library(tool-version INTERFACE)
target_compile_definitions(tool-version INTERFACE RETICLED_VERSION="${PROJECT_VERSION}")
