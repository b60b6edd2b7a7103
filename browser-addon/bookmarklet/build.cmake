# Makes the bookmarklet's address, one line, and a page with the bookmark to drag to the toolbar.
#   cmake -D SOURCE=bookmarklet.js -D PAGE=bookmarklet.html.in -D OUTPUT=<folder> -P build.cmake

file(READ "${SOURCE}" script)
# Comments stand on lines of their own; a line goes on where the one before has ended.
string(REGEX REPLACE "(^|\n) *//[^\n]*" "\\1" script "${script}")
string(REGEX REPLACE "\n+ *" " " script "${script}")
string(STRIP "${script}" script)

# A browser takes an address apart at these (RFC 3986, section 2.1).
string(REPLACE "%" "%25" script "${script}")
foreach(pair " =%20" "\"=%22" "#=%23" "<=%3C" ">=%3E" "`=%60")
  string(SUBSTRING "${pair}" 0 1 character)
  string(SUBSTRING "${pair}" 2 -1 code)
  string(REPLACE "${character}" "${code}" script "${script}")
endforeach()
set(BOOKMARKLET "javascript:${script}")

file(MAKE_DIRECTORY "${OUTPUT}")
file(WRITE "${OUTPUT}/bookmarklet.txt" "${BOOKMARKLET}\n")
string(REPLACE "&" "&amp;" BOOKMARKLET "${BOOKMARKLET}")
configure_file("${PAGE}" "${OUTPUT}/bookmarklet.html" @ONLY)
