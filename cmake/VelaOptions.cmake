# SPDX-FileCopyrightText: 2026 The Vela authors
# SPDX-License-Identifier: MIT

# The compiler options of every target: link vela_options and set nothing globally.
add_library(vela_options INTERFACE)
target_compile_features(vela_options INTERFACE cxx_std_17)
target_compile_definitions(vela_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_STRICT_ITERATORS
)
target_compile_options(vela_options INTERFACE
  -Wall -Wextra -Wpedantic
  # With clang, every qCDebug(category) << … would cause a -Wpedantic warning.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>
  $<$<BOOL:${VELA_WERROR}>:-Werror>
)
target_link_options(vela_options INTERFACE -Wl,-z,relro,-z,now)
if(VELA_SANITIZE)
  set(sanitize -fsanitize=${VELA_SANITIZE} -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_compile_options(vela_options INTERFACE ${sanitize})
  target_link_options(vela_options INTERFACE ${sanitize})
endif()
