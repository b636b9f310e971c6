#!/usr/bin/env python3
"""make_stubs.py SYSROOT: writes the link stubs that the SDK tree lacks.

libSystem   every C name that the SDK's own headers spell, and what the compiler emits by itself. A
            function of ours that is declared but not defined is no such name, so it still fails.
libc++      the names that Debian's libc++ and libc++abi export.
frameworks  the classes and constants of frameworks that are absent from the tree.
"""

import pathlib
import re
import subprocess
import sys

LLVM_LIBRARIES = "/usr/lib/llvm-19/lib"
TARGETS = "[ x86_64-macos, arm64-macos, arm64e-macos ]"

HEADERS = """
assert.h Block.h crt_externs.h ctype.h dirent.h dlfcn.h errno.h execinfo.h fcntl.h fenv.h grp.h
inttypes.h langinfo.h libgen.h libproc.h locale.h math.h notify.h poll.h pthread.h pthread/qos.h
pwd.h regex.h sched.h semaphore.h setjmp.h signal.h spawn.h stdio.h stdlib.h string.h strings.h
syslog.h termios.h time.h unistd.h unwind.h wchar.h wctype.h xlocale.h
dispatch/dispatch.h libkern/OSAtomic.h mach/mach.h mach/mach_time.h mach-o/dyld.h malloc/malloc.h
os/activity.h os/lock.h os/log.h os/signpost.h xpc/xpc.h
sys/event.h sys/file.h sys/ioctl.h sys/mman.h sys/mount.h sys/random.h sys/resource.h sys/select.h
sys/socket.h sys/stat.h sys/statvfs.h sys/sysctl.h sys/time.h sys/uio.h sys/un.h sys/utsname.h
sys/wait.h sys/xattr.h
""".split()

EMITTED_BY_COMPILER = """
dyld_stub_binder ___assert_rtn ___bzero ___chkstk_darwin ___cxa_atexit ___divti3 ___dso_handle
___error ___isOSVersionAtLeast ___isPlatformVersionAtLeast ___maskrune ___memcpy_chk
___memmove_chk ___memset_chk ___modti3 ___sincos_stret ___sincosf_stret ___snprintf_chk
___sprintf_chk ___stack_chk_fail ___stack_chk_guard ___strcat_chk ___strcpy_chk ___strlcpy_chk
___strncpy_chk ___tolower ___toupper ___udivti3 ___umodti3 ___vsprintf_chk ___vsnprintf_chk
__Block_object_assign __Block_object_dispose __DefaultRuneLocale __NSConcreteGlobalBlock
__NSConcreteMallocBlock __NSConcreteStackBlock __Unwind_Resume __dispatch_main_q
__dispatch_source_type_read __dispatch_source_type_signal __dispatch_source_type_timer
__os_log_impl __tlv_atexit __tlv_bootstrap _memset_pattern16 _memset_pattern4 _memset_pattern8
""".split()

# The word that an atomic waits on is a long long here and a long on Linux.
MANGLED_FOR_DARWIN = """
__ZNSt3__120__libcpp_atomic_waitEPVKvx __ZNSt3__120__libcpp_atomic_waitEPVKxx
__ZNSt3__123__libcpp_atomic_monitorEPVKv __ZNSt3__123__libcpp_atomic_monitorEPVKx
""".split()

ABSENT_FRAMEWORKS = {
    "UniformTypeIdentifiers": ["UTType"],
}


def nested(depth):
    """A pattern for text with balanced parentheses, at most `depth` deep."""
    pattern = r"[^()]*"
    for _ in range(depth):
        pattern = r"(?:[^()]|\(" + pattern + r"\))*"
    return pattern


ATTRIBUTES = re.compile(r"__(?:attribute|asm)__\s*\(" + nested(3) + r"\)")
SPELLED_OTHERWISE = re.compile(r'__asm(?:__)?\s*\(\s*((?:"[^"]*"\s*)+)\)')


def write_stub(path, install_name, symbols=(), classes=()):
    def listed(names):
        return ", ".join(f"'{name}'" for name in sorted(set(names)))

    lines = ["--- !tapi-tbd", "tbd-version: 4", f"targets: {TARGETS}",
             f"install-name: '{install_name}'", "exports:", f"  - targets: {TARGETS}"]
    if symbols:
        lines.append(f"    symbols: [ {listed(symbols)} ]")
    if classes:
        lines.append(f"    objc-classes: [ {listed(classes)} ]")
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join(lines + ["..."]) + "\n")


def preprocessed(sysroot, architecture):
    present = [h for h in HEADERS if (sysroot / "usr/include" / h).exists()]
    command = ["clang-19", f"--target={architecture}-apple-macos13.0", "-isysroot", str(sysroot),
               "-x", "c", "-fblocks", "-D_FORTIFY_SOURCE=0", "-E", "-P", "-"]
    text = "".join(f"#include <{header}>\n" for header in present)
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


def spelled_names(text):
    names = set()
    bare = ATTRIBUTES.sub(" ", text)
    for name in re.findall(r"\b([A-Za-z_]\w+)\s*\(", bare):
        names.add("_" + name)
    for declaration in re.findall(r"\bextern\b([^;{}()]*);", bare):
        for name in re.findall(r"([A-Za-z_]\w*)\s*(?:\[[^\]]*\])?\s*$", declaration):
            names.add("_" + name)
    for spelled in SPELLED_OTHERWISE.findall(text):
        names.add("".join(re.findall(r'"([^"]*)"', spelled)))
    return {name for name in names if re.fullmatch(r"_[\w$]+", name)}


def exported(library):
    command = ["llvm-nm-19", "-D", "--defined-only", "--format=just-symbols", library]
    output = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    return {"_" + name.split("@")[0] for name in output.split()}


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_stubs.py SYSROOT")
    sysroot = pathlib.Path(sys.argv[1])
    libraries = sysroot / "usr/lib"

    system = set(EMITTED_BY_COMPILER)
    for architecture in ("arm64", "x86_64"):
        system |= spelled_names(preprocessed(sysroot, architecture))
    write_stub(libraries / "libSystem.tbd", "/usr/lib/libSystem.B.dylib", system)

    abi = exported(LLVM_LIBRARIES + "/libc++abi.so.1")
    standard = exported(LLVM_LIBRARIES + "/libc++.so.1")
    write_stub(libraries / "libc++abi.tbd", "/usr/lib/libc++abi.dylib", abi)
    write_stub(libraries / "libc++.tbd", "/usr/lib/libc++.1.dylib",
               standard | abi | set(MANGLED_FOR_DARWIN))

    for name, classes in ABSENT_FRAMEWORKS.items():
        folder = sysroot / "System/Library/Frameworks" / f"{name}.framework"
        if folder.exists() and not (folder / f"{name}.tbd").is_file():
            continue
        install_name = f"/System/Library/Frameworks/{name}.framework/Versions/A/{name}"
        write_stub(folder / f"{name}.tbd", install_name, classes=classes)


main()
