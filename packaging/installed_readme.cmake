# Writes the README of an installation: without the parts between "in a clone only" and "end", and with a word on what is
# there instead.   cmake -DREADME=... -DTARGET=... -P installed_readme.cmake
file(READ "${README}" text)
set(begin "<!-- in a clone only -->\n")
set(end "<!-- end -->\n")
string(LENGTH "${end}" end_length)
string(FIND "${text}" "${begin}" at)
while(at GREATER -1)
  string(SUBSTRING "${text}" 0 ${at} before)
  string(SUBSTRING "${text}" ${at} -1 rest)
  string(FIND "${rest}" "${end}" stop)
  if(stop EQUAL -1)
    message(FATAL_ERROR "A part of ${README} has no end")
  endif()
  math(EXPR stop "${stop} + ${end_length}")
  string(SUBSTRING "${rest}" ${stop} -1 after)
  set(text "${before}${after}")
  string(FIND "${text}" "${begin}" at)
endwhile()
string(REPLACE "](docs/" "](" text "${text}") # they lie beside it
string(APPEND text "\n## More

`examples` holds a level, `harbour.t3d`, that has one of everything that is converted, with its textures, sounds and
meshes. `options.md` lists every option, `conforming.md` says what
`CheckConforming` changes, and `files.md` which files are read and written.
")
file(WRITE "${TARGET}" "${text}")
