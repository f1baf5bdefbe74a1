add_compile_options(-Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion)
if(QUIETLARK_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()
# A program loads only the libraries it calls: the server's floors are built beside Qt, not with it.
add_link_options(-Wl,--as-needed)
# What is looked up in libraries is found at the start, and cannot be written to from then on.
add_link_options($<$<CONFIG:RelWithDebInfo>:LINKER:-z,relro,-z,now>)
add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)

if(QUIETLARK_SANITIZE)
  add_compile_options(-fsanitize=${QUIETLARK_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUIETLARK_SANITIZE})
  if(QUIETLARK_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
  if(QUIETLARK_SANITIZE MATCHES "thread")
    # gcc warns that the sanitizer does not model fences; ours are only in libraries.
    add_compile_options(-Wno-tsan)
  endif()
elseif(BUILD_SHARED_LIBS)
  # A floor that calls one it did not name, or one above it, fails to link.
  add_link_options(-Wl,--no-undefined)
endif()
