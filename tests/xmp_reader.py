#!/usr/bin/env python3
"""Lists the properties of an XMP packet, one a line: path, tab, value.

usage: xmp_reader.py FILE      a packet, or a JPEG file with one in it; "-" is standard input

    dc:title[@x-default]<TAB>The sea
    dc:subject[1]<TAB>sky
    Iptc4xmpExt:LocationShown[1]/Iptc4xmpExt:City<TAB>Kyoto
    dc:creator[1]/?ex:role<TAB>painter

Qualifiers follow the value they belong to. A URI value is written <URI>; an empty list is [], an
empty structure {}. Backslash, tab and line ends in values are written \\\\ \\t \\n \\r. Items of
alternatives are named by their language where no other item has it. Exit status 1 if there is no
packet, or if it cannot be read.

Written from the standard alone and sharing no code with the library, so that it can judge it.
"""

import io
import sys
import xml.etree.ElementTree as ElementTree

RDF = "http://www.w3.org/1999/02/22-rdf-syntax-ns#"
XML = "http://www.w3.org/XML/1998/namespace"
LANGUAGE = "{%s}lang" % XML
SYNTAX = {
    "{%s}%s" % (RDF, name)
    for name in ("about", "ID", "nodeID", "resource", "parseType", "datatype")
}


def rdf(name):
    return "{%s}%s" % (RDF, name)


class Unreadable(Exception):
    pass


class Node:
    def __init__(self, form, value=""):
        self.form = form  # simple, uri, struct, bag, seq, alt
        self.value = value
        self.parts = []  # (name, node) of a structure, nodes of a list
        self.qualifiers = []  # (name, node)


def with_attributes(element):
    """The attributes that are properties, in order."""
    return [
        (name, Node("uri" if name == rdf("type") else "simple", value))
        for name, value in element.attrib.items()
        if name not in SYNTAX and name != "about" and not name.startswith("{%s}" % XML)
    ]


def from_fields(fields):
    """A structure; or, where it holds rdf:value, that value with the others as its qualifiers."""
    values = [node for name, node in fields if name == rdf("value")]
    if not values:
        node = Node("struct")
        node.parts = fields
        return node
    node = values[0]
    node.qualifiers += [(name, part) for name, part in fields if name != rdf("value")]
    return node


def read_resource(element):
    """A node element: a list, or a structure."""
    lists = {rdf("Bag"): "bag", rdf("Seq"): "seq", rdf("Alt"): "alt"}
    if element.tag in lists:
        node = Node(lists[element.tag])
        for item in element:
            if item.tag != rdf("li"):
                raise Unreadable("a list holds %s" % item.tag)
            node.parts.append(read_property(item))
        return node
    fields = with_attributes(element)
    fields += [(child.tag, read_property(child)) for child in element]
    node = from_fields(fields)
    if element.tag != rdf("Description"):
        # A typed node: its type is a qualifier.
        uri, local = element.tag[1:].split("}")
        node.qualifiers.insert(0, (rdf("type"), Node("uri", uri + local)))
    return node


def read_property(element):
    """The value of a property element, field or item."""
    kind = element.get(rdf("parseType"))
    children = list(element)
    if kind == "Resource":
        node = from_fields([(child.tag, read_property(child)) for child in children])
    elif kind is not None:
        raise Unreadable("%s has parse type %s" % (element.tag, kind))
    elif children:
        if len(children) != 1:
            raise Unreadable("%s has %d values" % (element.tag, len(children)))
        node = read_resource(children[0])
    else:
        fields = with_attributes(element)
        if element.get(rdf("resource")) is not None:
            node = Node("uri", element.get(rdf("resource")))
            node.qualifiers += fields
        elif fields:
            node = from_fields(fields)
        else:
            node = Node("simple", element.text or "")
            if element.get(rdf("datatype")) is not None:
                node.qualifiers.append((rdf("datatype"), Node("uri", element.get(rdf("datatype")))))
    if element.get(LANGUAGE) is not None:
        node.qualifiers.insert(0, (LANGUAGE, Node("simple", element.get(LANGUAGE))))
    return node


class Printer:
    def __init__(self, prefixes):
        self.prefixes = prefixes
        self.lines = []

    def name(self, tag):
        if not tag.startswith("{"):
            return tag
        uri, local = tag[1:].split("}")
        prefix = self.prefixes.get(uri)
        return "%s:%s" % (prefix, local) if prefix else tag

    def print(self, path, node):
        value = node.value
        if node.form in ("simple", "uri"):
            for plain, escaped in (("\\", "\\\\"), ("\t", "\\t"), ("\n", "\\n"), ("\r", "\\r")):
                value = value.replace(plain, escaped)
            self.lines.append("%s\t%s" % (path, "<%s>" % value if node.form == "uri" else value))
        elif not node.parts:
            self.lines.append("%s\t%s" % (path, "{}" if node.form == "struct" else "[]"))
        for name, part in node.qualifiers:
            self.print("%s/?%s" % (path, self.name(name)), part)
        if node.form == "struct":
            for name, part in node.parts:
                self.print("%s/%s" % (path, self.name(name)), part)
            return
        languages = [self.language(part).lower() for part in node.parts]
        for number, part in enumerate(node.parts, 1):
            language = self.language(part)
            own = node.form == "alt" and language and languages.count(language.lower()) == 1
            self.print("%s[%s]" % (path, "@" + language if own else number), part)

    @staticmethod
    def language(node):
        found = [part.value for name, part in node.qualifiers if name == LANGUAGE]
        return found[0] if found else ""


def read_properties(data):
    """The properties of a packet, and the first prefix of each namespace."""
    prefixes = {XML: "xml"}
    root = None
    # Zeros behind a packet are legal padding; in UTF-16 and UTF-32 they are halves of characters.
    if b"\0" not in data[:4] and data[:2] not in (b"\xff\xfe", b"\xfe\xff"):
        data = data.strip(b"\0 \n\r\t")
    try:
        events = ElementTree.iterparse(io.BytesIO(data), ("start-ns", "end"))
        for event, what in events:
            if event == "start-ns":
                prefixes.setdefault(what[1], what[0])
            else:
                root = what
    except ElementTree.ParseError as error:
        raise Unreadable("not well-formed: %s" % error) from error
    # The last end is the root's.
    rdf_root = root if root.tag == rdf("RDF") else root.find(".//" + rdf("RDF"))
    if rdf_root is None:
        raise Unreadable("there is no rdf:RDF in it")
    properties = []
    for description in rdf_root:
        properties += with_attributes(description)
        properties += [(element.tag, read_property(element)) for element in description]
    return properties, prefixes


def read_packet(data):
    """The lines for a packet."""
    properties, prefixes = read_properties(data)
    printer = Printer(prefixes)
    for name, node in properties:
        printer.print(printer.name(name), node)
    return printer.lines


def packet_of(data):
    """The packet itself; of a JPEG file its first XMP segment's."""
    if data[:2] != b"\xff\xd8":
        return data
    signature = b"http://ns.adobe.com/xap/1.0/\0"
    at = 2
    while data[at : at + 1] == b"\xff":
        while data[at : at + 1] == b"\xff":
            at += 1
        marker = data[at : at + 1]
        if marker in (b"\xda", b"\xd9", b""):
            break
        if marker == b"\x01" or b"\xd0" <= marker <= b"\xd7":
            at += 1
            continue
        length = int.from_bytes(data[at + 1 : at + 3], "big")
        body = data[at + 3 : at + 1 + length]
        if marker == b"\xe1" and body.startswith(signature):
            return body[len(signature) :]
        at += 1 + length
    raise Unreadable("there is no XMP packet in it")


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip(), file=sys.stderr)
        return 1
    try:
        if sys.argv[1] == "-":
            data = sys.stdin.buffer.read()
        else:
            with open(sys.argv[1], "rb") as file:
                data = file.read()
        lines = read_packet(packet_of(data))
    except (Unreadable, OSError) as error:
        print("%s: %s" % (sys.argv[1], error), file=sys.stderr)
        return 1
    sys.stdout.buffer.write("".join(line + "\n" for line in lines).encode("utf-8"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
