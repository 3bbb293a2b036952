# What every target of the project is compiled with. Linking TavikSettings carries it.
add_library(TavikSettings INTERFACE)

target_compile_options(TavikSettings INTERFACE
  -Wall -Wextra -Wpedantic
  -Wconversion -Wsign-conversion -Wshadow=local -Wold-style-cast -Wuseless-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wduplicated-cond -Wlogical-op -Wformat=2
  $<$<BOOL:${TAVIK_WARNINGS_AS_ERRORS}>:-Werror>)

# Bounds checks of the standard containers stay on in every build: the dictionary, the network
# and other programs are hostile input, and a stopped program loses less than a corrupted one.
target_compile_definitions(TavikSettings INTERFACE _GLIBCXX_ASSERTIONS)

if(TAVIK_SANITIZE)
  target_compile_options(TavikSettings INTERFACE
    -fsanitize=${TAVIK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(TavikSettings INTERFACE -fsanitize=${TAVIK_SANITIZE})
else()
  target_compile_options(TavikSettings INTERFACE
    -fstack-protector-strong $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
