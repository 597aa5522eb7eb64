"""A CMS SignedData in DER that is complete in form and carries the right digest, but no certificate and a signature
of zeros: enough to check byte ranges and sizes, never enough to verify."""

from hashlib import sha256


def der(tag, *parts):
    body = b"".join(parts)
    size = len(body)
    if size < 128:
        return bytes([tag, size]) + body
    length = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return bytes([tag, 128 + len(length)]) + length + body


def oid(*arcs):
    body = bytes([arcs[0] * 40 + arcs[1]])
    for arc in arcs[2:]:
        digits = [arc & 127]
        while arc := arc >> 7:
            digits.insert(0, 128 | arc & 127)
        body += bytes(digits)
    return der(6, body)


SEQUENCE, SET, OCTETS, INTEGER, NULL = 0x30, 0x31, 0x04, 0x02, der(5)
DATA, SIGNED_DATA = oid(1, 2, 840, 113549, 1, 7, 1), oid(1, 2, 840, 113549, 1, 7, 2)
CONTENT_TYPE, MESSAGE_DIGEST = oid(1, 2, 840, 113549, 1, 9, 3), oid(1, 2, 840, 113549, 1, 9, 4)
SHA256 = der(SEQUENCE, oid(2, 16, 840, 1, 101, 3, 4, 2, 1), NULL)
RSA = der(SEQUENCE, oid(1, 2, 840, 113549, 1, 1, 1), NULL)


def signed_data(signed_bytes):
    digest = der(SEQUENCE, MESSAGE_DIGEST, der(SET, der(OCTETS, sha256(signed_bytes).digest())))
    attributes = der(0xA0, der(SEQUENCE, CONTENT_TYPE, der(SET, DATA)), digest)
    key_id = der(0x80, b"formwork sample key.")
    signer = der(SEQUENCE, der(INTEGER, b"\3"), key_id, SHA256, attributes, RSA, der(OCTETS, bytes(256)))
    content = der(SEQUENCE, der(INTEGER, b"\3"), der(SET, SHA256), der(SEQUENCE, DATA), der(SET, signer))
    return der(SEQUENCE, SIGNED_DATA, der(0xA0, content))
