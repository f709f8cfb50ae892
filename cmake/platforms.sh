# For `run`: what it takes to build for another platform than this machine's, and to run what was built.

# The Debian packages that a platform needs, as those of `run`.
declare -A platform_needs=(
    [linux-x86]="g++-multilib"
    [windows-x64]="g++-mingw-w64-x86-64-posix=x86_64-w64-mingw32-g++-posix wine wine64"
    [windows-x86]="g++-mingw-w64-i686-posix=i686-w64-mingw32-g++-posix"
)
dependency_needs=(cmake=cmake ninja-build=ninja dpkg-dev=dpkg-source googletest)
dependency_sources=(highway tinyxml libpng1.6 zlib)
platforms=build/platforms

# Fetches the dependencies' source packages with Debian's patches, one folder each: with lists of packages of its own,
# so that this machine's stay as they are.
fetch_sources() {
    local sources=$platforms/sources apt=$PWD/$platforms/apt release each
    [[ ! -e $sources/complete ]] || return 0
    say "Fetching the Debian sources of ${dependency_sources[*]} into $sources"
    rm -rf -- "$sources" "$apt"
    mkdir -p -- "$sources" "$apt/lists/partial" "$apt/cache"
    release=$(. /etc/os-release && printf '%s' "${VERSION_CODENAME:-}")
    printf 'deb-src [signed-by=%s] http://deb.debian.org/debian %s main\n' \
        /usr/share/keyrings/debian-archive-keyring.gpg "$release" >"$apt/sources.list"
    local options=(-qq -o "Dir::Etc::SourceList=$apt/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o "Dir::State::Lists=$apt/lists" -o "Dir::Cache=$apt/cache" -o APT::Sandbox::User=)
    apt-get "${options[@]}" update </dev/null || fail "Debian's lists of sources could not be fetched"
    (cd -- "$sources" && apt-get "${options[@]}" source "${dependency_sources[@]}" </dev/null) ||
        fail "Debian's sources could not be fetched"
    for each in "${dependency_sources[@]}"; do
        # The one folder that was unpacked has the version in its name.
        mv -- "$sources/$each"-*/ "$sources/$each"
    done
    rm -rf -- "$apt"
    touch -- "$sources/complete"
}

# Builds the dependencies for a platform, unless that was done since how they are built changed. Then all that was built
# before goes, the library too: compilers' settings count only when a folder is first configured.
build_dependencies() {
    local platform=$1 prefix=$platforms/$1/prefix
    [[ ! -e $prefix/complete || $(find cmake/dependencies cmake/toolchains -type f -newer "$prefix/complete") ]] ||
        return 0
    say "Building GoogleTest, Highway, TinyXML and libpng for $platform into $prefix"
    rm -rf -- "$prefix" "$platforms/$platform/build" "build/$platform"
    cmake -S cmake/dependencies -B "$platforms/$platform/build" -G Ninja \
        --toolchain "$PWD/cmake/toolchains/$platform.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$PWD/$prefix" -DZPA_SOURCES="$PWD/$platforms/sources"
    cmake --build "$platforms/$platform/build" --parallel "$jobs"
    cmake --install "$platforms/$platform/build" >/dev/null
    touch -- "$prefix/complete"
}

# Gives Wine a home of its own, without the parts that it would offer to fetch.
prepare_wine() {
    export WINEPREFIX=$PWD/$platforms/$1/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=;winedbg.exe='
    export LC_ALL=C.UTF-8 # else files could have no national names
    [[ ! -e $WINEPREFIX/complete ]] || return 0
    say "Preparing Wine in $WINEPREFIX"
    rm -rf -- "$WINEPREFIX"
    mkdir -p -- "$WINEPREFIX"
    wineboot --init </dev/null
    wineserver --wait
    touch -- "$WINEPREFIX/complete"
}

# test or build --platform NAME: all set-up, a build, and the tests, or only those that run nothing that was built.
for_platform() {
    local command=$1 platform=${3:-} chosen=()
    (($# <= 3)) || unknown "$command" "$4"
    case $command-$platform in
        *-linux-x86 | *-windows-x64 | build-windows-x86) ;;
        test-windows-x86) fail "test: $platform is only built; ./run build --platform $platform" ;;
        *) fail "$command: no platform '$platform'; ./run help lists them" ;;
    esac
    # shellcheck disable=SC2086 # a list
    need "${dependency_needs[@]}" ${platform_needs[$platform]}
    use_ccache
    fetch_sources
    build_dependencies "$platform"
    [[ $platform != windows-x64 ]] || prepare_wine "$platform"
    build "$platform"
    if [[ $command == build ]]; then
        chosen=(--tests-regex '^exports$')
        say "Checking what build/$platform shows to others"
    else
        say "Running the tests of build/$platform"
    fi
    ctest --preset "$platform" "${chosen[@]}"
}
