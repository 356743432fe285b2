#!/usr/bin/env python3
"""Minimal Windows executables with a version resource, and a reader of them.

  make_pe_version.py make 32|64 OUT   write a PE32 or PE32+ file
  make_pe_version.py read FILE        print its version resource

The files follow the published PE/COFF layout: a DOS header whose e_lfanew
points at "PE\\0\\0", the COFF file header, the optional header with sixteen
data directories, and two sections: .text (one "ret") and .rsrc. The resource
tree has two types, RT_VERSION (16) and RT_MANIFEST (24), each with id 1 in
language 0x0409; the version data comes last, followed by zeros up to the
section's end, so a patcher has room to grow it in place.

The reader shares no code with the library: it walks the headers, the
section table and the resource tree itself and prints the fixed file and
product versions, the prerelease flag and every string as NAME=VALUE lines.
Standard library only.
"""
import struct
import sys

FILE_ALIGN = 0x200
SECTION_ALIGN = 0x1000
TEXT_RVA, RSRC_RVA = 0x1000, 0x2000
HEADERS_SIZE = 0x200
TEXT_RAW, RSRC_RAW, RSRC_RAW_SIZE = 0x200, 0x400, 0x600

STRINGS = [
    ("CompanyName", "qv test data"),
    ("FileDescription", "A minimal executable with a version resource"),
    ("FileVersion", "1, 0, 0, 0"),
    ("InternalName", "minimal"),
    ("LegalCopyright", "none"),
    ("OriginalFilename", "minimal.exe"),
    ("ProductName", "qv"),
    ("ProductVersion", "1, 0, 0, 0"),
]
MANIFEST = b'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\r\n' \
           b'<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0"/>\r\n'


def pad4(data):
    return data + b"\0" * (-len(data) % 4)


def utf16z(text):
    return text.encode("utf-16-le") + b"\0\0"


def block(key, value=b"", value_length=0, text=False, children=()):
    """A VS_VERSIONINFO-style block: wLength, wValueLength, wType, the key,
    padding, the value, padding, the children; every value and child starts
    on 32 bits, and wLength ends with the last byte of the block's own."""
    body = bytes(6) + utf16z(key)
    if value or children:
        body = pad4(body) + value
    for child in children:
        body = pad4(body) + child
    return struct.pack("<HHH", len(body), value_length, 1 if text else 0) + body[6:]


def version_block():
    fixed = struct.pack("<13I", 0xFEEF04BD, 0x00010000, 0x00010000, 0, 0x00010000, 0,
                        0x3F, 0, 0x00040004, 1, 0, 0, 0)
    strings = [block(name, utf16z(value), len(value) + 1, True) for name, value in STRINGS]
    table = block("040904b0", text=True, children=strings)
    string_info = block("StringFileInfo", text=True, children=[table])
    translation = block("Translation", struct.pack("<HH", 0x0409, 0x04B0), 4)
    var_info = block("VarFileInfo", text=True, children=[translation])
    return block("VS_VERSION_INFO", fixed, len(fixed), children=[string_info, var_info])


def resource_section():
    """Root directory, two name directories, two language directories, two
    data entries, then the manifest and the version data."""
    version = version_block()
    types = [(16, version), (24, MANIFEST)]  # ids in ascending order
    root_size = 16 + 8 * len(types)
    dir_size = 16 + 8
    names_at = root_size
    langs_at = names_at + dir_size * len(types)
    entries_at = langs_at + dir_size * len(types)
    data_at = entries_at + 16 * len(types)
    # Data in reverse order so the version data comes last.
    offsets, at = {}, data_at
    for type_id, data in reversed(types):
        at = (at + 7) & ~7
        offsets[type_id] = at
        at += len(data)
    out = bytearray(RSRC_RAW_SIZE)
    assert at <= len(out)

    def directory(at, entries):
        struct.pack_into("<IIHHHH", out, at, 0, 0, 4, 0, 0, len(entries))
        for i, (name, target) in enumerate(entries):
            struct.pack_into("<II", out, at + 16 + 8 * i, name, target)

    directory(0, [(t, 0x80000000 | (names_at + i * dir_size)) for i, (t, _) in enumerate(types)])
    for i, (type_id, data) in enumerate(types):
        directory(names_at + i * dir_size, [(1, 0x80000000 | (langs_at + i * dir_size))])
        directory(langs_at + i * dir_size, [(0x0409, entries_at + 16 * i)])
        struct.pack_into("<IIII", out, entries_at + 16 * i, RSRC_RVA + offsets[type_id], len(data), 0, 0)
        out[offsets[type_id]:offsets[type_id] + len(data)] = data
    return bytes(out)


def executable(bits):
    rsrc = resource_section()
    pe32plus = bits == 64
    optional_size = 240 if pe32plus else 224
    image_size = RSRC_RVA + ((len(rsrc) + SECTION_ALIGN - 1) & ~(SECTION_ALIGN - 1))
    out = bytearray(RSRC_RAW + len(rsrc))
    struct.pack_into("<2s58xI", out, 0, b"MZ", 0x40)
    machine, characteristics = (0x8664, 0x0022) if pe32plus else (0x014C, 0x0102)
    struct.pack_into("<4sHHIIIHH", out, 0x40, b"PE\0\0", machine, 2, 0, 0, 0, optional_size, characteristics)
    opt = 0x40 + 24
    # Magic, linker version, code/data sizes, entry point, base of code.
    struct.pack_into("<HBBIIIII", out, opt, 0x20B if pe32plus else 0x10B, 14, 0,
                     FILE_ALIGN, len(rsrc), 0, TEXT_RVA, TEXT_RVA)
    if pe32plus:
        struct.pack_into("<Q", out, opt + 24, 0x140000000)
    else:
        struct.pack_into("<II", out, opt + 24, RSRC_RVA, 0x400000)
    # Alignments, versions, sizes, checksum, subsystem (console), DLL flags.
    struct.pack_into("<IIHHHHHHIIIIHH", out, opt + 32, SECTION_ALIGN, FILE_ALIGN, 6, 0, 0, 0, 6, 0, 0,
                     image_size, HEADERS_SIZE, 0, 3, 0x8140)
    if pe32plus:
        struct.pack_into("<QQQQII", out, opt + 72, 0x100000, 0x1000, 0x100000, 0x1000, 0, 16)
        directories = opt + 112
    else:
        struct.pack_into("<IIIIII", out, opt + 72, 0x100000, 0x1000, 0x100000, 0x1000, 0, 16)
        directories = opt + 96
    struct.pack_into("<II", out, directories + 8 * 2, RSRC_RVA, len(rsrc))
    sections = opt + optional_size
    struct.pack_into("<8sIIIIIIHHI", out, sections, b".text", 1, TEXT_RVA, FILE_ALIGN, TEXT_RAW,
                     0, 0, 0, 0, 0x60000020)
    struct.pack_into("<8sIIIIIIHHI", out, sections + 40, b".rsrc", len(rsrc), RSRC_RVA, len(rsrc), RSRC_RAW,
                     0, 0, 0, 0, 0x40000040)
    out[TEXT_RAW] = 0xC3  # ret
    out[RSRC_RAW:] = rsrc
    return bytes(out)


# ---- The independent reader ----

def read_version(data):
    def u16(at):
        return struct.unpack_from("<H", data, at)[0]

    def u32(at):
        return struct.unpack_from("<I", data, at)[0]

    if data[:2] != b"MZ":
        raise ValueError("no MZ header")
    pe = u32(0x3C)
    if data[pe:pe + 4] != b"PE\0\0":
        raise ValueError("no PE signature")
    count, optional_size = u16(pe + 6), u16(pe + 20)
    opt = pe + 24
    directories = opt + (112 if u16(opt) == 0x20B else 96)
    rsrc_rva = u32(directories + 16)
    sections = []
    for i in range(count):
        at = opt + optional_size + 40 * i
        vsize, va, raw_size, raw = struct.unpack_from("<IIII", data, at + 8)
        sections.append((va, max(vsize, raw_size), raw))

    def offset(rva):
        for va, size, raw in sections:
            if va <= rva < va + size:
                return raw + rva - va
        raise ValueError("RVA 0x%x outside every section" % rva)

    base = offset(rsrc_rva)

    def entries(at):
        n = u16(base + at + 12) + u16(base + at + 14)
        return [(u32(base + at + 16 + 8 * i), u32(base + at + 20 + 8 * i)) for i in range(n)]

    for type_id, names in entries(0):
        if type_id != 16:
            continue
        for name_id, langs in entries(names & 0x7FFFFFFF):
            if name_id != 1:
                continue
            for _, entry in entries(langs & 0x7FFFFFFF):
                rva, size = u32(base + entry), u32(base + entry + 4)
                start = offset(rva)
                return data[start:start + size]
    raise ValueError("no version resource")


def parse_block(data, at):
    length, value_length, kind = struct.unpack_from("<HHH", data, at)
    end = at + length
    key_end = at + 6
    while data[key_end:key_end + 2] != b"\0\0":
        key_end += 2
    key = data[at + 6:key_end].decode("utf-16-le")
    value_at = (key_end + 2 + 3) & ~3
    value_bytes = value_length * 2 if kind == 1 else value_length
    value = data[value_at:value_at + value_bytes]
    children, child = [], (value_at + value_bytes + 3) & ~3
    while child + 6 <= end:
        node = parse_block(data, child)
        children.append(node)
        child = (child + node["length"] + 3) & ~3
    return {"key": key, "value": value, "kind": kind, "length": length, "children": children}


def describe(path):
    with open(path, "rb") as f:
        data = f.read()
    root = parse_block(read_version(data), 0)
    fixed = struct.unpack_from("<13I", root["value"])
    lines = ["FileVersion(fixed)=%d.%d.%d.%d" % (fixed[2] >> 16, fixed[2] & 0xFFFF, fixed[3] >> 16, fixed[3] & 0xFFFF),
             "ProductVersion(fixed)=%d.%d.%d.%d" % (fixed[4] >> 16, fixed[4] & 0xFFFF, fixed[5] >> 16,
                                                    fixed[5] & 0xFFFF),
             "Prerelease=%d" % ((fixed[7] >> 1) & 1)]
    for child in root["children"]:
        if child["key"] != "StringFileInfo":
            continue
        for table in child["children"]:
            for entry in table["children"]:
                lines.append("%s=%s" % (entry["key"], entry["value"].decode("utf-16-le").rstrip("\0")))
    return "\n".join(lines) + "\n"


def main(argv):
    if len(argv) == 4 and argv[1] == "make" and argv[2] in ("32", "64"):
        with open(argv[3], "wb") as f:
            f.write(executable(int(argv[2])))
        return 0
    if len(argv) == 3 and argv[1] == "read":
        try:
            sys.stdout.write(describe(argv[2]))
        except (ValueError, struct.error, IndexError, UnicodeDecodeError) as e:
            sys.stderr.write("make_pe_version.py: %s: %s\n" % (argv[2], e))
            return 1
        return 0
    sys.stderr.write(__doc__)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
