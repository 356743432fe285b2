# Warning and sanitizer flags shared by every target of the project.
add_library(qv_options INTERFACE)
target_compile_options(qv_options INTERFACE -Wall -Wextra $<$<BOOL:${QV_WERROR}>:-Werror>)
# Kernels built for newer instruction sets give the portable path's bits, so
# no multiply and add may be fused behind the source's back.
target_compile_options(qv_options INTERFACE -ffp-contract=off)
if(QV_SANITIZE)
  target_compile_options(qv_options INTERFACE -fsanitize=${QV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(qv_options INTERFACE -fsanitize=${QV_SANITIZE})
endif()
if(QV_FUZZ)
  # Coverage instrumentation for the library too, so the fuzzers see inside it.
  target_compile_options(qv_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
