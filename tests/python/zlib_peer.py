#!/usr/bin/env python3
"""Python's zlib as a peer for the deflate channel tests.

    zlib_peer.py compress   raw|wrapped LEVEL INPUT OUTPUT [DICTIONARY]
    zlib_peer.py decompress raw|wrapped INPUT OUTPUT [DICTIONARY]

Decompression insists on one complete stream with nothing after it; any
fault is printed to standard error and exits with status 1.
"""
import sys
import zlib

CHUNK = 65536


def window_bits(form):
    return {"raw": -15, "wrapped": 15}[form]


def dictionary_options(arguments):
    if not arguments:
        return {}
    with open(arguments[0], "rb") as f:
        return {"zdict": f.read()}


def compress(form, level, source, target, *rest):
    compressor = zlib.compressobj(int(level), zlib.DEFLATED, window_bits(form), 8,
                                  zlib.Z_DEFAULT_STRATEGY, **dictionary_options(rest))
    with open(source, "rb") as f, open(target, "wb") as out:
        while block := f.read(CHUNK):
            out.write(compressor.compress(block))
        out.write(compressor.flush(zlib.Z_FINISH))


def decompress(form, source, target, *rest):
    decompressor = zlib.decompressobj(window_bits(form), **dictionary_options(rest))
    with open(source, "rb") as f, open(target, "wb") as out:
        while block := f.read(CHUNK):
            out.write(decompressor.decompress(block))
        out.write(decompressor.flush())
    if not decompressor.eof:
        raise ValueError("the stream is incomplete")
    if decompressor.unused_data:
        raise ValueError("%d bytes follow the stream" % len(decompressor.unused_data))


def main(arguments):
    commands = {"compress": compress, "decompress": decompress}
    try:
        commands[arguments[0]](*arguments[1:])
    except (KeyError, IndexError, TypeError, ValueError, OSError, zlib.error) as fault:
        print("zlib_peer.py: %s: %s" % (type(fault).__name__, fault), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
