// The forms that a property may have in RDF/XML, and what each is read as: what XMP allows of them,
// and what it does not allow and what is shown as its source then.

#pragma once

namespace kivxmp::testing {

struct FormCase {
    const char* about;
    const char* content;  // of an rdf:Description
    const char* want;     // lines of Dump
};

inline constexpr FormCase kRdfForms[] = {
    {"text", "<dc:format>image/jpeg</dc:format>", "dc:format simple image/jpeg\n"},
    {"no text", "<dc:format/><xmp:Label></xmp:Label>", "dc:format simple \nxmp:Label simple \n"},
    // White space is part of a text.
    {"white space", "<dc:format> a\n b </dc:format>", "dc:format simple  a\\n b \n"},
    {"references and sections", "<dc:format>&lt;&#x41;<![CDATA[<&]]>&amp;</dc:format>",
     "dc:format simple <A<&&\n"},
    {"references beyond ASCII", "<ex:a>&#38;&#x3C;&#128512;&#10;&#13;&#9;</ex:a>",
     "ex:a simple &<\xF0\x9F\x98\x80\\n\\r\\t\n"},
    {"white space alone", "<ex:a> \n </ex:a>", "ex:a simple  \\n \n"},
    {"a section alone", "<ex:a><![CDATA[ <rdf:Bag/> ]]></ex:a>", "ex:a simple  <rdf:Bag/> \n"},
    {"comments and instructions", "<!--1--><dc:format>a<!--2-->b<?three?>c</dc:format><?four?>",
     "dc:format simple abc\n"},
    {"language", "<dc:format xml:lang=\"de\">a</dc:format>",
     "dc:format simple a\ndc:format/?xml:lang simple de\n"},
    {"URI", "<ex:a rdf:resource=\"http://a/?b&amp;c\"/>", "ex:a uri http://a/?b&c\n"},
    {"URI with end tag", "<ex:a rdf:resource=\"u\"> </ex:a>", "ex:a uri u\n"},
    {"empty URI", "<ex:a rdf:resource=\"\"></ex:a>", "ex:a uri \n"},
    {"language of a URI", "<ex:a rdf:resource=\"u\" xml:lang=\"de\"/>",
     "ex:a uri u\nex:a/?xml:lang simple de\n"},
    {"language of an empty text", "<ex:a xml:lang='de'/><ex:b xml:lang=''>1</ex:b>",
     "ex:a simple \nex:a/?xml:lang simple de\nex:b simple 1\nex:b/?xml:lang simple \n"},
    {"a type", "<rdf:type rdf:resource=\"http://t\"/>", "rdf:type uri http://t\n"},

    {"bag", "<dc:subject><rdf:Bag><rdf:li>a</rdf:li><rdf:li/></rdf:Bag></dc:subject>",
     "dc:subject bag\ndc:subject[1] simple a\ndc:subject[2] simple \n"},
    {"seq", "<dc:creator>\n <rdf:Seq>\n  <rdf:li>a</rdf:li>\n </rdf:Seq>\n</dc:creator>",
     "dc:creator seq\ndc:creator[1] simple a\n"},
    {"empty lists", "<ex:a><rdf:Bag/></ex:a><ex:b><rdf:Seq></rdf:Seq></ex:b>",
     "ex:a bag\nex:b seq\n"},
    {"URIs as items", "<ex:a><rdf:Seq><rdf:li rdf:resource=\"u\"/></rdf:Seq></ex:a>",
     "ex:a seq\nex:a[1] uri u\n"},
    {"lists in lists",
     "<ex:a><rdf:Seq><rdf:li><rdf:Bag><rdf:li>1</rdf:li></rdf:Bag></rdf:li></rdf:Seq></ex:a>",
     "ex:a seq\nex:a[1] bag\nex:a[1][1] simple 1\n"},
    {"comments around and in a list",
     "<ex:a ><!--1--><rdf:Bag ><?two?><rdf:li >a<!--b-->c</rdf:li ><!-- </rdf:Bag> -->\n"
     "</rdf:Bag ><?four?></ex:a >",
     "ex:a bag\nex:a[1] simple ac\n"},
    {"items of white space",
     "<ex:a><rdf:Seq><rdf:li> a\n</rdf:li><rdf:li> </rdf:li></rdf:Seq></ex:a>",
     "ex:a seq\nex:a[1] simple  a\\n\nex:a[2] simple  \n"},
    {"empty items",
     "<ex:a><rdf:Bag><rdf:li/><rdf:li></rdf:li><rdf:li xml:lang=\"de\"/><rdf:li><rdf:Seq/></rdf:li>"
     "<rdf:li rdf:parseType=\"Resource\"/><rdf:li rdf:resource=\"\"/></rdf:Bag></ex:a>",
     "ex:a bag\nex:a[1] simple \nex:a[2] simple \nex:a[3] simple \nex:a[3]/?xml:lang simple de\n"
     "ex:a[4] seq\nex:a[5] struct\nex:a[6] uri \n"},
    {"alternatives without languages",
     "<ex:a><rdf:Alt><rdf:li>1</rdf:li><rdf:li rdf:resource=\"u\"/></rdf:Alt></ex:a>",
     "ex:a alt\nex:a[1] simple 1\nex:a[2] uri u\n"},
    {"no alternatives", "<dc:title><rdf:Alt></rdf:Alt></dc:title>", "dc:title alt\n"},
    {"language of a list", "<ex:a xml:lang=\"de\"><rdf:Bag><rdf:li>1</rdf:li></rdf:Bag></ex:a>",
     "ex:a bag\nex:a/?xml:lang simple de\nex:a[1] simple 1\n"},

    {"language alternative",
     "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">t</rdf:li>"
     "<rdf:li xml:lang=\"de-AT\">u</rdf:li></rdf:Alt></dc:title>",
     "dc:title alt\n"
     "dc:title[@x-default] simple t\ndc:title[@x-default]/?xml:lang simple x-default\n"
     "dc:title[@de-AT] simple u\ndc:title[@de-AT]/?xml:lang simple de-AT\n"},
    // A language that two items have does not name one of them.
    {"doubled language",
     "<dc:title><rdf:Alt><rdf:li xml:lang=\"de\">t</rdf:li><rdf:li xml:lang=\"DE\">u</rdf:li>"
     "<rdf:li>v</rdf:li></rdf:Alt></dc:title>",
     "dc:title alt\ndc:title[1] simple t\ndc:title[1]/?xml:lang simple de\n"
     "dc:title[2] simple u\ndc:title[2]/?xml:lang simple DE\ndc:title[3] simple v\n"},
    {"language in a bag", "<ex:a><rdf:Bag><rdf:li xml:lang=\"de\">t</rdf:li></rdf:Bag></ex:a>",
     "ex:a bag\nex:a[1] simple t\nex:a[1]/?xml:lang simple de\n"},
    {"no default",
     "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\">1</rdf:li><rdf:li xml:lang=\"fr\">2"
     "</rdf:li></rdf:Alt></ex:a>",
     "ex:a alt\nex:a[@de] simple 1\nex:a[@de]/?xml:lang simple de\n"
     "ex:a[@fr] simple 2\nex:a[@fr]/?xml:lang simple fr\n"},
    {"default behind another",
     "<ex:a><rdf:Alt><rdf:li xml:lang=\"fr\">2</rdf:li>"
     "<rdf:li xml:lang=\"x-default\">1</rdf:li><rdf:li xml:lang=\"de\">3</rdf:li></rdf:Alt></ex:a>",
     "ex:a alt\nex:a[@fr] simple 2\nex:a[@fr]/?xml:lang simple fr\n"
     "ex:a[@x-default] simple 1\nex:a[@x-default]/?xml:lang simple x-default\n"
     "ex:a[@de] simple 3\nex:a[@de]/?xml:lang simple de\n"},
    {"two defaults",
     "<ex:a><rdf:Alt><rdf:li xml:lang=\"x-default\">1</rdf:li>"
     "<rdf:li xml:lang=\"x-default\">2</rdf:li></rdf:Alt></ex:a>",
     "ex:a alt\nex:a[1] simple 1\nex:a[1]/?xml:lang simple x-default\n"
     "ex:a[2] simple 2\nex:a[2]/?xml:lang simple x-default\n"},
    {"doubled language among others",
     "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\">1</rdf:li>"
     "<rdf:li xml:lang=\"x-default\">2</rdf:li><rdf:li xml:lang=\"de\">3</rdf:li></rdf:Alt></ex:a>",
     "ex:a alt\nex:a[1] simple 1\nex:a[1]/?xml:lang simple de\n"
     "ex:a[@x-default] simple 2\nex:a[@x-default]/?xml:lang simple x-default\n"
     "ex:a[3] simple 3\nex:a[3]/?xml:lang simple de\n"},
    {"empty alternatives",
     "<ex:a><rdf:Alt><rdf:li xml:lang=\"x-default\"/>"
     "<rdf:li xml:lang=\"\">1</rdf:li></rdf:Alt></ex:a>",
     "ex:a alt\nex:a[@x-default] simple \nex:a[@x-default]/?xml:lang simple x-default\n"
     "ex:a[2] simple 1\nex:a[2]/?xml:lang simple \n"},
    {"structures and URIs by language",
     "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\""
     " rdf:parseType=\"Resource\"><ex:b>1</ex:b></rdf:li><rdf:li rdf:resource=\"u\" "
     "xml:lang=\"fr\"/>"
     "</rdf:Alt></ex:a>",
     "ex:a alt\nex:a[@de] struct\nex:a[@de]/?xml:lang simple de\nex:a[@de]/ex:b simple 1\n"
     "ex:a[@fr] uri u\nex:a[@fr]/?xml:lang simple fr\n"},
    {"qualified alternative",
     "<ex:a><rdf:Alt><rdf:li xml:lang=\"de\" rdf:parseType=\"Resource\">"
     "<rdf:value>1</rdf:value><q:b>2</q:b></rdf:li></rdf:Alt></ex:a>",
     "ex:a alt\nex:a[@de] simple 1\nex:a[@de]/?xml:lang simple de\nex:a[@de]/?q:b simple 2\n"},

    {"structure", "<ex:a><rdf:Description><ex:b>1</ex:b><q:c>2</q:c></rdf:Description></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/q:c simple 2\n"},
    {"structure by parseType", "<ex:a rdf:parseType=\"Resource\"><ex:b>1</ex:b></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\n"},
    {"structure in attributes", "<ex:a ex:b=\"1\" q:c=\"2\"/>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/q:c simple 2\n"},
    {"attributes and elements",
     "<ex:a><rdf:Description ex:b=\"1\"><ex:c>2</ex:c></rdf:Description></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/ex:c simple 2\n"},
    {"empty structures", "<ex:a><rdf:Description/></ex:a><ex:b rdf:parseType=\"Resource\"/>",
     "ex:a struct\nex:b struct\n"},
    {"structures as items",
     "<ex:a><rdf:Seq><rdf:li ex:b=\"1\"/><rdf:li rdf:parseType=\"Resource\"><ex:b>2</ex:b>"
     "</rdf:li></rdf:Seq></ex:a>",
     "ex:a seq\nex:a[1] struct\nex:a[1]/ex:b simple 1\nex:a[2] struct\nex:a[2]/ex:b simple 2\n"},
    {"structures in structures",
     "<ex:a rdf:parseType=\"Resource\"><ex:b rdf:parseType=\"Resource\"><ex:c>1</ex:c></ex:b>"
     "</ex:a>",
     "ex:a struct\nex:a/ex:b struct\nex:a/ex:b/ex:c simple 1\n"},
    {"structure about nothing", "<ex:a><rdf:Description rdf:about=\"\" ex:b=\"1\"/></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\n"},
    {"typed structure", "<ex:a><q:Kind ex:b=\"1\"/></ex:a>",
     "ex:a struct\nex:a/?rdf:type uri http://q/Kind\nex:a/ex:b simple 1\n"},
    {"typed structure as an item",
     "<ex:a><rdf:Bag><rdf:li><q:Kind><ex:b>1</ex:b></q:Kind></rdf:li></rdf:Bag></ex:a>",
     "ex:a bag\nex:a[1] struct\nex:a[1]/?rdf:type uri http://q/Kind\nex:a[1]/ex:b simple 1\n"},
    {"description as an item",
     "<ex:a><rdf:Bag><rdf:li><rdf:Description ex:b=\"1\"/></rdf:li></rdf:Bag></ex:a>",
     "ex:a bag\nex:a[1] struct\nex:a[1]/ex:b simple 1\n"},
    {"descriptions in descriptions",
     "<ex:a>\n <rdf:Description>\n  <ex:b>\n   <rdf:Description ex:c=\"1\">\n    <ex:d/>\n"
     "   </rdf:Description>\n  </ex:b>\n </rdf:Description>\n</ex:a>",
     "ex:a struct\nex:a/ex:b struct\nex:a/ex:b/ex:c simple 1\nex:a/ex:b/ex:d simple \n"},
    {"structure about nothing, unqualified",
     "<ex:a><rdf:Description about=\"\" ex:b=\"1\"/></ex:a>", "ex:a struct\nex:a/ex:b simple 1\n"},
    {"structure with a language",
     "<ex:a xml:lang=\"de\" rdf:parseType=\"Resource\"><ex:b>1</ex:b></ex:a>",
     "ex:a struct\nex:a/?xml:lang simple de\nex:a/ex:b simple 1\n"},
    {"attributes and a language", "<ex:a ex:b=\"1\" xml:lang=\"de\"/>",
     "ex:a struct\nex:a/?xml:lang simple de\nex:a/ex:b simple 1\n"},
    {"empty fields",
     "<ex:a rdf:parseType=\"Resource\"><ex:b/><ex:c rdf:resource=\"\"/><ex:d><rdf:Bag/></ex:d>"
     "<ex:e rdf:parseType=\"Resource\"/></ex:a>",
     "ex:a struct\nex:a/ex:b simple \nex:a/ex:c uri \nex:a/ex:d bag\nex:a/ex:e struct\n"},
    {"comments, instructions and white space in a structure",
     "<ex:a rdf:parseType=\"Resource\">\n<!--1-->\t<ex:b>1</ex:b>\r\n<?two?></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\n"},
    {"attributes of several lines", "<ex:a\n ex:b = '1&#xA;2\n3'\n\tq:c=\"&quot;'\"\n/>",
     "ex:a struct\nex:a/ex:b simple 1\\n2 3\nex:a/q:c simple \"'\n"},
    {"type as a field element",
     "<ex:a rdf:parseType=\"Resource\"><rdf:type rdf:resource=\"http://q/Kind\"/></ex:a>",
     "ex:a struct\nex:a/rdf:type uri http://q/Kind\n"},
    {"type as a field", "<ex:a><rdf:Description rdf:type=\"http://q/Kind\"/></ex:a>",
     "ex:a struct\nex:a/rdf:type uri http://q/Kind\n"},

    {"qualifier",
     "<ex:a><rdf:Description><rdf:value>v</rdf:value><q:b>1</q:b></rdf:Description></ex:a>",
     "ex:a simple v\nex:a/?q:b simple 1\n"},
    {"qualifier by parseType",
     "<ex:a rdf:parseType=\"Resource\"><q:b>1</q:b><rdf:value>v</rdf:value></ex:a>",
     "ex:a simple v\nex:a/?q:b simple 1\n"},
    {"qualifier in attributes", "<ex:a rdf:value=\"v\" q:b=\"1\"/>",
     "ex:a simple v\nex:a/?q:b simple 1\n"},
    {"qualifier of a URI", "<ex:a rdf:resource=\"u\" q:b=\"1\"/>",
     "ex:a uri u\nex:a/?q:b simple 1\n"},
    {"qualifier of an item",
     "<dc:creator><rdf:Seq><rdf:li rdf:value=\"v\" q:b=\"1\"/></rdf:Seq></dc:creator>",
     "dc:creator seq\ndc:creator[1] simple v\ndc:creator[1]/?q:b simple 1\n"},
    {"qualifier of a list",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value><rdf:Bag><rdf:li>1</rdf:li></rdf:Bag>"
     "</rdf:value><q:b>2</q:b></ex:a>",
     "ex:a bag\nex:a/?q:b simple 2\nex:a[1] simple 1\n"},
    {"qualifier with structure",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><q:b q:c=\"1\"/></ex:a>",
     "ex:a simple v\nex:a/?q:b struct\nex:a/?q:b/q:c simple 1\n"},
    {"language and qualifier",
     "<ex:a xml:lang=\"de\"><rdf:Description><q:b>1</q:b><rdf:value>v</rdf:value>"
     "</rdf:Description></ex:a>",
     "ex:a simple v\nex:a/?xml:lang simple de\nex:a/?q:b simple 1\n"},
    {"language inside",
     "<ex:a rdf:parseType=\"Resource\"><q:b>1</q:b><rdf:value xml:lang=\"de\">v</rdf:value>"
     "</ex:a>",
     "ex:a simple v\nex:a/?xml:lang simple de\nex:a/?q:b simple 1\n"},
    {"data type", "<ex:a rdf:datatype=\"http://int\">5</ex:a>",
     "ex:a simple 5\nex:a/?rdf:datatype uri http://int\n"},
    {"typed value", "<ex:a><q:Kind><rdf:value>v</rdf:value></q:Kind></ex:a>",
     "ex:a simple v\nex:a/?rdf:type uri http://q/Kind\n"},
    {"qualified URI",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value rdf:resource=\"u\"/><q:b>1</q:b></ex:a>",
     "ex:a uri u\nex:a/?q:b simple 1\n"},
    {"qualified structure",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value rdf:parseType=\"Resource\"><ex:c>1</ex:c>"
     "</rdf:value><q:b>2</q:b></ex:a>",
     "ex:a struct\nex:a/?q:b simple 2\nex:a/ex:c simple 1\n"},
    {"qualified empty text",
     "<ex:a><rdf:Description q:b=\"1\"><rdf:value/></rdf:Description></ex:a>",
     "ex:a simple \nex:a/?q:b simple 1\n"},
    {"no qualifier", "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value></ex:a>",
     "ex:a simple v\n"},
    {"qualifiers that are lists and URIs",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><q:b><rdf:Bag><rdf:li>1</rdf:li>"
     "</rdf:Bag></q:b><q:c rdf:resource=\"u\"/></ex:a>",
     "ex:a simple v\nex:a/?q:b bag\nex:a/?q:b[1] simple 1\nex:a/?q:c uri u\n"},
    {"qualifier of a qualifier",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><q:b rdf:parseType=\"Resource\">"
     "<rdf:value>1</rdf:value><q:c>2</q:c></q:b></ex:a>",
     "ex:a simple v\nex:a/?q:b simple 1\nex:a/?q:b/?q:c simple 2\n"},
    {"value in a value",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value "
     "rdf:parseType=\"Resource\"><rdf:value>v</rdf:value>"
     "<q:b>1</q:b></rdf:value><q:c>2</q:c></ex:a>",
     "ex:a simple v\nex:a/?q:b simple 1\nex:a/?q:c simple 2\n"},
    {"type as a qualifier",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><rdf:type "
     "rdf:resource=\"t\"/></ex:a>",
     "ex:a simple v\nex:a/?rdf:type uri t\n"},
    {"qualified field",
     "<ex:a rdf:parseType=\"Resource\"><ex:b rdf:value=\"v\" q:c=\"1\"/><ex:d>2</ex:d></ex:a>",
     "ex:a struct\nex:a/ex:b simple v\nex:a/ex:b/?q:c simple 1\nex:a/ex:d simple 2\n"},

    // What XMP does not allow is shown as its source.
    {"literal XML", "<ex:a rdf:parseType=\"Literal\"><b/>&amp;</ex:a><ex:b>1</ex:b>",
     "ex:a raw <ex:a rdf:parseType=\"Literal\"><b/>&amp;</ex:a>\nex:b simple 1\n"},
    {"collection", "<ex:a rdf:parseType=\"Collection\"><q:b/></ex:a>",
     "ex:a raw <ex:a rdf:parseType=\"Collection\"><q:b/></ex:a>\n"},
    {"identifier", "<ex:a rdf:ID=\"i\">1</ex:a>", "ex:a raw <ex:a rdf:ID=\"i\">1</ex:a>\n"},
    {"node identifier", "<ex:a rdf:nodeID=\"n\"/>", "ex:a raw <ex:a rdf:nodeID=\"n\"/>\n"},
    {"mixed content", "<ex:a>1<rdf:Bag/></ex:a>", "ex:a raw <ex:a>1<rdf:Bag/></ex:a>\n"},
    {"text behind", "<ex:a><rdf:Bag/>1</ex:a>", "ex:a raw <ex:a><rdf:Bag/>1</ex:a>\n"},
    {"text in a list", "<ex:a><rdf:Bag>1</rdf:Bag></ex:a>",
     "ex:a raw <ex:a><rdf:Bag>1</rdf:Bag></ex:a>\n"},
    {"two nodes", "<ex:a><rdf:Bag/><rdf:Bag/></ex:a>",
     "ex:a raw <ex:a><rdf:Bag/><rdf:Bag/></ex:a>\n"},
    {"numbered item", "<ex:a><rdf:Seq><rdf:_1>x</rdf:_1></rdf:Seq></ex:a>",
     "ex:a raw <ex:a><rdf:Seq><rdf:_1>x</rdf:_1></rdf:Seq></ex:a>\n"},
    {"list with attributes", "<ex:a><rdf:Bag ex:b=\"1\"/></ex:a>",
     "ex:a raw <ex:a><rdf:Bag ex:b=\"1\"/></ex:a>\n"},
    {"structure about another", "<ex:a><rdf:Description rdf:about=\"u\"/></ex:a>",
     "ex:a raw <ex:a><rdf:Description rdf:about=\"u\"/></ex:a>\n"},
    {"URI and value", "<ex:a rdf:resource=\"u\" rdf:value=\"v\"/>",
     "ex:a raw <ex:a rdf:resource=\"u\" rdf:value=\"v\"/>\n"},
    {"attributes and content", "<ex:a ex:b=\"1\">2</ex:a>", "ex:a raw <ex:a ex:b=\"1\">2</ex:a>\n"},
    {"term as a property", "<rdf:foo>1</rdf:foo>", "rdf:foo raw <rdf:foo>1</rdf:foo>\n"},
    {"item outside of a list", "<rdf:li>1</rdf:li>", "rdf:li raw <rdf:li>1</rdf:li>\n"},
    {"value of nothing", "<rdf:value>1</rdf:value>", "rdf:value raw <rdf:value>1</rdf:value>\n"},
    {"numbered item among others",
     "<ex:a><rdf:Bag><rdf:li>a</rdf:li><rdf:_2>b</rdf:_2></rdf:Bag></ex:a>",
     "ex:a raw <ex:a><rdf:Bag><rdf:li>a</rdf:li><rdf:_2>b</rdf:_2></rdf:Bag></ex:a>\n"},
    {"numbered alternative", "<ex:a><rdf:Alt><rdf:_1 xml:lang=\"de\">a</rdf:_1></rdf:Alt></ex:a>",
     "ex:a raw <ex:a><rdf:Alt><rdf:_1 xml:lang=\"de\">a</rdf:_1></rdf:Alt></ex:a>\n"},
    {"numbered property", "<rdf:_1>a</rdf:_1>", "rdf:_1 raw <rdf:_1>a</rdf:_1>\n"},
    {"another parse type", "<ex:a rdf:parseType=\"other\"><b/></ex:a>",
     "ex:a raw <ex:a rdf:parseType=\"other\"><b/></ex:a>\n"},
    {"resource of a property", "<ex:a rdf:about=\"\">1</ex:a>",
     "ex:a raw <ex:a rdf:about=\"\">1</ex:a>\n"},
    {"identified structure", "<ex:a><rdf:Description rdf:ID=\"i\" ex:b=\"1\"/></ex:a>",
     "ex:a raw <ex:a><rdf:Description rdf:ID=\"i\" ex:b=\"1\"/></ex:a>\n"},
    {"structure with a node identifier", "<ex:a><rdf:Description rdf:nodeID=\"n\"/></ex:a>",
     "ex:a raw <ex:a><rdf:Description rdf:nodeID=\"n\"/></ex:a>\n"},
    {"identifiers of old", "<ex:a rdf:bagID=\"b\">1</ex:a><ex:b rdf:aboutEach=\"#b\">2</ex:b>",
     "ex:a raw <ex:a rdf:bagID=\"b\">1</ex:a>\nex:b raw <ex:b rdf:aboutEach=\"#b\">2</ex:b>\n"},
    {"URI and content",
     "<ex:a rdf:resource=\"u\">1</ex:a><ex:b rdf:resource=\"u\"><rdf:Bag/></ex:b>",
     "ex:a raw <ex:a rdf:resource=\"u\">1</ex:a>\n"
     "ex:b raw <ex:b rdf:resource=\"u\"><rdf:Bag/></ex:b>\n"},
    {"data type of a list", "<ex:a rdf:datatype=\"d\"><rdf:Bag/></ex:a>",
     "ex:a raw <ex:a rdf:datatype=\"d\"><rdf:Bag/></ex:a>\n"},
    {"attribute of XML", "<ex:a xml:space=\"preserve\"> 1 </ex:a>",
     "ex:a raw <ex:a xml:space=\"preserve\"> 1 </ex:a>\n"},
    {"attribute without a namespace", "<ex:a b=\"1\"/>", "ex:a raw <ex:a b=\"1\"/>\n"},
    {"field without a namespace", "<ex:a rdf:parseType=\"Resource\"><b>1</b><ex:c>2</ex:c></ex:a>",
     "ex:a struct\nex:a/{}b raw <b>1</b>\nex:a/ex:c simple 2\n"},
    {"text between fields", "<ex:a rdf:parseType=\"Resource\">t<ex:b>1</ex:b></ex:a>",
     "ex:a raw <ex:a rdf:parseType=\"Resource\">t<ex:b>1</ex:b></ex:a>\n"},
    {"value twice as elements",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value>1</rdf:value><rdf:value>2</rdf:value></ex:a>",
     "ex:a simple 1\nex:a/?rdf:value raw <rdf:value>2</rdf:value>\n"},
    {"raw qualifier",
     "<ex:a rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><q:b rdf:ID=\"i\"/></ex:a>",
     "ex:a simple v\nex:a/?q:b raw <q:b rdf:ID=\"i\"/>\n"},
    {"raw item among others",
     "<ex:a><rdf:Bag><rdf:li>1</rdf:li><rdf:li rdf:ID=\"i\"/></rdf:Bag></ex:a>",
     "ex:a bag\nex:a[1] simple 1\nex:a[2] raw <rdf:li rdf:ID=\"i\"/>\n"},
    {"raw field among others",
     "<ex:a rdf:parseType=\"Resource\"><ex:b>1</ex:b><ex:c rdf:ID=\"i\"/></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/ex:c raw <ex:c rdf:ID=\"i\"/>\n"},
    {"value twice, by two means",
     "<ex:a xml:lang=\"de\" rdf:parseType=\"Resource\"><rdf:value xml:lang=\"en\">v</rdf:value>"
     "</ex:a>",
     "ex:a raw <ex:a xml:lang=\"de\" rdf:parseType=\"Resource\">"
     "<rdf:value xml:lang=\"en\">v</rdf:value></ex:a>\n"},

    // The first of a name counts; later ones are shown as their source.
    {"property twice", "<ex:a>1</ex:a><ex:a>2</ex:a>", "ex:a simple 1\nex:a raw <ex:a>2</ex:a>\n"},
    {"field twice", "<ex:a><rdf:Description ex:b=\"1\"><ex:b>2</ex:b></rdf:Description></ex:a>",
     "ex:a struct\nex:a/ex:b simple 1\nex:a/ex:b raw <ex:b>2</ex:b>\n"},
    {"twice by two prefixes", "<ex:a>1</ex:a><p:a xmlns:p=\"http://ex/\">2</p:a>",
     "ex:a simple 1\np:a raw <p:a xmlns:p=\"http://ex/\">2</p:a>\n"},

    // Namespaces.
    {"own declaration", "<p:a xmlns:p=\"http://p/\">1</p:a>", "p:a simple 1\n"},
    {"default namespace", "<a xmlns=\"http://purl.org/dc/elements/1.1/\">1</a>", "dc:a simple 1\n"},
    {"unknown default namespace", "<a xmlns=\"http://p/\">1</a>", "{http://p/}a simple 1\n"},
    // A well-known prefix always names the well-known namespace.
    {"prefix of another namespace", "<dc:a xmlns:dc=\"http://p/\">1</dc:a>",
     "{http://p/}a simple 1\n"},
    {"prefix with two meanings",
     "<p:a xmlns:p=\"http://p1/\">1</p:a><p:a xmlns:p=\"http://p2/\">2</p:a>",
     "p:a simple 1\n{http://p2/}a simple 2\n"},
    {"another prefix of a known namespace",
     "<d:a xmlns:d=\"http://purl.org/dc/elements/1.1/\">1</d:a>", "dc:a simple 1\n"},
    {"prefix declared anew inside",
     "<p:a xmlns:p=\"http://p1/\" rdf:parseType=\"Resource\"><p:b xmlns:p=\"http://p2/\">1</p:b>"
     "<p:c>2</p:c></p:a>",
     "p:a struct\np:a/{http://p2/}b simple 1\np:a/p:c simple 2\n"},
    {"two prefixes of a namespace",
     "<p:a xmlns:p=\"http://p/\" xmlns:o=\"http://p/\" rdf:parseType=\"Resource\"><o:b>1</o:b>"
     "<p:c o:d=\"2\"/></p:a>",
     "p:a struct\np:a/o:b simple 1\np:a/p:c struct\np:a/p:c/o:d simple 2\n"},
    {"default namespace inside another",
     "<a xmlns=\"http://p/\"><rdf:Description><b "
     "xmlns=\"http://o/\">1</b><c>2</c></rdf:Description>"
     "</a>",
     "{http://p/}a struct\n{http://p/}a/{http://o/}b simple 1\n{http://p/}a/{http://p/}c simple "
     "2\n"},
    {"default namespace given up",
     "<a xmlns=\"http://p/\" rdf:parseType=\"Resource\"><b xmlns=\"\">1</b><c>2</c></a>",
     "{http://p/}a struct\n{http://p/}a/{}b raw <b xmlns=\"\">1</b>\n"
     "{http://p/}a/{http://p/}c simple 2\n"},
    {"RDF by another prefix",
     "<ex:a xmlns:r=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><r:Bag><r:li r:resource=\"u\"/>"
     "<rdf:li>1</rdf:li></r:Bag></ex:a>",
     "ex:a bag\nex:a[1] uri u\nex:a[2] simple 1\n"},
    {"RDF's prefix for another namespace",
     "<rdf:a xmlns:rdf=\"http://p/\" xmlns:r=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\""
     " r:parseType=\"Resource\"><rdf:b r:resource=\"u\"/></rdf:a>",
     "{http://p/}a struct\n{http://p/}a/{http://p/}b uri u\n"},
    {"namespaces that need references", "<p:a xmlns:p=\"http://p/?a&amp;b=&quot;&lt;\">1</p:a>",
     "p:a simple 1\n"},
    {"names beyond ASCII",
     "<p:gr\xC3\xB6\xC3\x9F"
     "e xmlns:p=\"http://p/\xC3\xBC\">1</p:gr\xC3\xB6\xC3\x9F"
     "e>",
     "p:gr\xC3\xB6\xC3\x9F"
     "e simple 1\n"},
    {"no namespace", "<a>1</a>", "{}a raw <a>1</a>\n"},
};

struct AttributeCase {
    const char* attributes;  // of an rdf:Description
    const char* want;        // lines of Dump
};

inline constexpr AttributeCase kRdfAttributes[] = {
    {"dc:format=\"a\" ex:b='2'", "dc:format simple a\nex:b simple 2\n"},
    {"rdf:type=\"http://t\"", "rdf:type uri http://t\n"},
    {"ex:a=\"1&#xA;2 3\n4\"", "ex:a simple 1\\n2 3 4\n"},
    // They name the description, or the language of something else.
    {"rdf:ID=\"i\" xml:lang=\"de\"", ""},
    {"rdf:bagID=\"i\"", "rdf:bagID raw rdf:bagID=\"i\"\n"},
    {"foo=\"1\"", "{}foo raw foo=\"1\"\n"},
    {"ex:a='' ex:b=\"'\" q:a='&quot;&lt;&#9;'", "ex:a simple \nex:b simple '\nq:a simple \"<\\t\n"},
    {"xml:space=\"preserve\" xml:base=\"u\" ex:a=\"1\"", "ex:a simple 1\n"},
    {"rdf:value=\"v\"", "rdf:value raw rdf:value=\"v\"\n"},
    {"xmlns=\"http://p/\" a=\"1\" xmlns:dc=\"http://o/\" dc:a=\"2\"",
     "{}a raw a=\"1\"\n{http://o/}a simple 2\n"},
    {"ex:a=\"1\" p:a=\"2\" xmlns:p=\"http://ex/\"", "ex:a simple 1\np:a raw p:a=\"2\"\n"},
};

}  // namespace kivxmp::testing
