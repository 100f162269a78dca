#!/usr/bin/env python3
"""What the export library takes of a host, told by the symbols of the built files.

    host_symbols.py check LIBRARY HOST HEADERS
        Fails when LIBRARY takes anything of HOST, the reference host, that another
        host couldn't know of: because it lies in MarloHost, or because no header in
        the folder HEADERS declares it.

    host_symbols.py stubs LIBRARY HOST OUT OBJECT...
        Writes C++ to OUT: a stub for all that LIBRARY and the objects take of HOST and
        the objects don't define. A function prints its name and aborts; so does each
        virtual function of a class whose vtable is a stub. Static data can't do so and
        get no stub: where they have no real body, the linker says so.
"""
import pathlib
import re
import struct
import subprocess
import sys

PROLOGUE = """// Written by host_symbols.py.
#include <cstdio>
#include <cstdlib>

// The vtable of the type_info of classes without bases; objects point behind two words.
extern "C" void* classTypeInfo[] __asm__("_ZTVN10__cxxabiv117__class_type_infoE");

static void stop(char const* name)
{
    std::fprintf(stderr, "this host has no body for %s\\n", name);
    std::abort();
}
"""
POINTER = struct.calcsize("P")
SCOPE = re.compile(r"\b(?:namespace|class|struct|enum)\s+(?:MARLO_HOST_API\s+)?([\w:]+)")
MOC = ("staticMetaObject", "metaObject(0)", "qt_metacast(1)", "qt_metacall(3)")
MEMBER = re.compile(r"(operator[^\s\w(]+|~?\w+)\s*(?:\(|=|$)")
QUALIFIED = re.compile(r"(?:\w+ for )?((?:\w+::)*(?:operator[^\w(]+|~?\w+))")


def nm(*arguments):
    """Type and size in bytes by symbol."""
    output = subprocess.run(["nm", "--format=posix", *arguments], check=True, capture_output=True, text=True).stdout
    rows = [line.split() for line in output.splitlines() if not line.endswith(":")]
    return {row[0].split("@")[0]: (row[1], int(row[3], 16) if len(row) > 3 else 0) for row in rows if row}


def demangled(symbols):
    symbols = sorted(symbols)
    names = subprocess.run(["c++filt"], input="\n".join(symbols), check=True, capture_output=True, text=True).stdout
    return dict(zip(symbols, names.splitlines()))


def with_arity(name, rest):
    """A name and the number of its parameters: "f(2)" for "f" and "(int, QMap<A, B>) const"."""
    without = None
    while without != rest:
        without, rest = rest, re.sub(r"<[^<>]*>", "", rest)
    parameters = re.search(r"\(([^()]*)", rest)
    if not parameters:
        return name
    return f"{name}({parameters[1].count(',') + 1 if parameters[1].strip() else 0})"


def declared(header):
    """Qualified names of the classes, functions (with_arity) and static data of a header."""
    names, scopes = set(), []
    for statement, end in re.findall(r"([^{};]*)([{};])", re.sub(r"//.*|#.*", "", header.read_text("utf-8"))):
        scope, member = SCOPE.search(statement), MEMBER.search(statement.strip())
        inside = "::".join(filter(None, scopes))
        if "Q_OBJECT" in statement:
            names.update(f"{inside}::{name}" for name in MOC)
        if end == "}":
            scopes.pop()
        elif end == "{":
            scopes.append(scope[1] if scope else "")
            names.add("::".join(filter(None, scopes)))
        elif member:
            name = f"{inside}::{member[1]}".lstrip(":")
            names.add(with_arity(name, statement.strip()[member.end(1):]))
    return names


def check(library, host, headers):
    taken = demangled(nm("-D", "--undefined-only", library))
    of_host = [taken[symbol] for symbol in taken.keys() & nm("-D", "--defined-only", host)]
    interface = set().union(*map(declared, pathlib.Path(headers).glob("*.h")))
    faults = {name for name in taken.values() if "MarloHost::" in name}
    for name in of_host:
        plain = re.sub(r"<[^<>()]*>(?=::)", "", name)
        qualified = QUALIFIED.match(plain)
        if not qualified or with_arity(qualified[1], plain[qualified.end():]) not in interface:
            faults.add(name)
    for name in sorted(faults):
        print(f"host_symbols: the library takes what src/Host doesn't declare: {name}", file=sys.stderr)
    print(f"host_symbols: {len(of_host)} symbols of the host")
    return 1 if faults or not of_host else 0


def stub(place, symbol, kind, size, name):
    """C++ that defines a symbol; empty for static data."""
    trap = f'void trap{place}() {{ stop("{name}"); }}\n'
    words = f"void const* const words{place}[]"
    table = f'extern {words} __asm__("{symbol}");\n{words} = '
    if kind in "TW":
        return f'void trap{place}() __asm__("{symbol}");\n{trap}'
    if symbol.startswith("_ZTV"):
        slots = f", reinterpret_cast<void*>(trap{place})" * (size // POINTER - 2)
        return f"{trap}{table}{{nullptr, nullptr{slots}}};\n"
    if symbol.startswith("_ZTI"):
        return f'{table}{{classTypeInfo + 2, "{symbol[4:]}"}};\n'
    return ""


def stubs(library, host, out, *objects):
    host_symbols = nm("-D", "--defined-only", host)
    taken = nm("-D", "--undefined-only", library).keys() | nm("--undefined-only", *objects).keys()
    missing = demangled((taken & host_symbols.keys()) - nm("--defined-only", *objects).keys())
    text = "\n".join(stub(i, symbol, *host_symbols[symbol], name) for i, (symbol, name) in enumerate(missing.items()))
    pathlib.Path(out).write_text(PROLOGUE + text, "utf-8")
    return 0


sys.exit({"check": check, "stubs": stubs}[sys.argv[1]](*sys.argv[2:]))
