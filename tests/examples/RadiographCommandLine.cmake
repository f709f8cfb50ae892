# Runs the radiograph example as a user does: PROGRAM in FOLDER, which is made anew.
cmake_minimum_required(VERSION 3.20)

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

# Pixels are pairs of characters, so that raw files can be written from here.
function(write_raw name pixels)
    string(REPEAT "Az" ${pixels} text)
    file(WRITE ${FOLDER}/${name} "${text}")
endfunction()

# Every file and folder there is, with its contents.
function(snapshot result)
    file(GLOB_RECURSE paths LIST_DIRECTORIES true RELATIVE ${FOLDER} ${FOLDER}/* ${FOLDER}/.[a-z]*)
    set(all "")
    foreach(path IN LISTS paths)
        set(hash folder)
        if(NOT IS_DIRECTORY ${FOLDER}/${path})
            file(SHA256 ${FOLDER}/${path} hash)
        endif()
        list(APPEND all "${path} ${hash}")
    endforeach()
    set(${result} "${all}" PARENT_SCOPE)
endfunction()

# The program ends with 2 after one line that matches `reason`, and leaves the folder as it was.
function(refuses reason)
    snapshot(before)
    execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${FOLDER}
        RESULT_VARIABLE code OUTPUT_VARIABLE output ERROR_VARIABLE error)
    snapshot(after)
    if(NOT code STREQUAL "2" OR NOT error MATCHES "^radiograph: [^\n]*${reason}[^\n]*\n$"
       OR NOT before STREQUAL after)
        list(REMOVE_ITEM after ${before})
        message(SEND_ERROR "${ARGN}\nwanted: ${reason}\ncode: ${code}\nerror: ${error}new files: ${after}")
    endif()
endfunction()

# The program ends with 0, complains of nothing, and its last line ends in `last`.
function(succeeds last)
    execute_process(COMMAND ${PROGRAM} ${ARGN} WORKING_DIRECTORY ${FOLDER}
        RESULT_VARIABLE code OUTPUT_VARIABLE output ERROR_VARIABLE error)
    if(NOT code STREQUAL "0" OR NOT error STREQUAL "" OR NOT output MATCHES "${last}\n$")
        message(SEND_ERROR "${ARGN}\ncode: ${code}\nerror: ${error}\noutput: ${output}")
    endif()
endfunction()

write_raw(good.60.40.raw 2400)
write_raw(short.60.40.raw 2399)
write_raw(long.60.40.raw 2401)
write_raw(noname.raw 2400)
write_raw(half.60.raw 2400)
write_raw(negative.-60.-40.raw 2400)
write_raw(huge.2000000000.2000000000.raw 1)
write_raw(other.60.40.txt 2400)
write_raw(eight.60.80.mask 2400)
write_raw(tiny.2.2.raw 4)
write_raw(input.60.40.raw 2400)
file(MAKE_DIRECTORY ${FOLDER}/folder.60.40.raw ${FOLDER}/blocked/report.html)

refuses("unknown option '--no'" ${PROGRAM} --no)
refuses("unknown option '-x'" ${PROGRAM} good.60.40.raw -x)
refuses("--out needs a folder" ${PROGRAM} good.60.40.raw --out)
refuses("one file, please" ${PROGRAM} good.60.40.raw noname.raw)
refuses("missing.60.40.raw: no such file" ${PROGRAM} missing.60.40.raw)
refuses("not a file that can be read" ${PROGRAM} folder.60.40.raw)
foreach(name noname.raw half.60.raw negative.-60.-40.raw other.60.40.txt eight.60.80.mask)
    refuses("${name}: the name must tell the size" ${PROGRAM} ${name})
endforeach()
refuses("has 4798 bytes, but 60 by 40 pixels of 16 bits take 4800" ${PROGRAM} short.60.40.raw)
refuses("has 4802 bytes" ${PROGRAM} long.60.40.raw)
refuses("take 8000000000000000000" ${PROGRAM} huge.2000000000.2000000000.raw)
refuses("3 by 3: .*invalid kernel size" ${PROGRAM} tiny.2.2.raw)
refuses("cannot make the folder" ${PROGRAM} good.60.40.raw --out noname.raw)
refuses("cannot make the folder" ${PROGRAM} good.60.40.raw --out noname.raw/new)
refuses("a folder is in the way" ${PROGRAM} good.60.40.raw --out blocked)
refuses("would replace the input" ${PROGRAM} input.60.40.raw --out .)
if(UNIX)
    # A limit on the size of files ends writing in the middle, as a full disk does.
    refuses("cannot be written" sh -c "trap '' XFSZ && ulimit -f 1 && '${PROGRAM}' good.60.40.raw --out new/deep")
endif()

succeeds("Show this." --help)

# A new folder below one that does not exist, then the same again among files of the user's.
succeeds("Report: new/deep/report.html" good.60.40.raw --out new/deep)
file(WRITE ${FOLDER}/new/deep/mine.txt "mine")
succeeds("Report: new/deep/report.html" good.60.40.raw --out new/deep --invert)
snapshot(files)
list(FILTER files INCLUDE REGEX "^new/deep/")
list(TRANSFORM files REPLACE "^new/deep/([^ ]*) .*" "\\1")
list(SORT files)
set(wanted "")
foreach(name background flattened input)
    list(APPEND wanted ${name}.60.40.raw ${name}.pgm ${name}.png)
endforeach()
list(APPEND wanted mine.txt report.html)
if(NOT files STREQUAL wanted)
    message(SEND_ERROR "files: ${files}")
endif()

# An even image is its own background, and nothing is left to flatten.
file(SHA256 ${FOLDER}/good.60.40.raw source)
foreach(name background flattened input)
    file(SHA256 ${FOLDER}/new/deep/${name}.60.40.raw result)
    if(NOT source STREQUAL result)
        message(SEND_ERROR "${name} differs from an even input")
    endif()
endforeach()

# The phantom is the same every time.
succeeds("Report: radiograph-out/report.html")
succeeds("Report: again/report.html" --out again)
file(SHA256 ${FOLDER}/radiograph-out/input.2048.2048.raw first)
file(SHA256 ${FOLDER}/again/input.2048.2048.raw second)
if(NOT first STREQUAL second)
    message(SEND_ERROR "two phantoms differ")
endif()
