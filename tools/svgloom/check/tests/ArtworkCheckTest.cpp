#include "tools/svgloom/check/ArtworkCheck.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "svgloom/src/DocumentCreator.h"
#include "tools/svgloom/check/EngineObjects.h"
#include "tools/svgloom/check/tests/CheckSupport.h"

namespace svgloom {
namespace {

using testing_support::Places;
using testing_support::PlacesInside;

struct CheckCase {
    std::string_view input;
    std::string_view want;
};

// Whole files.
constexpr CheckCase kFileCases[] = {
    {"<svg viewBox='0 0 1 1'/>", ""},
    {"\xEF\xBB\xBF<svg viewBox='0 0 1 1'/>", ""},
    {"<?xml version='1.0'?>\n<!DOCTYPE svg [<!ENTITY a 'b'>]>\n<!-- x -->\n"
     "<svg viewBox='0 0 1 1'/>",
     ""},
    // What is no XML.
    {"", "1:1 root"},
    {" \n ", "1:1 root"},
    {"text", "1:1 xml"},
    {"<svg viewBox='0 0 1 1'>\n <g>\n</svg>", "3:6 xml"},
    {"<svg viewBox='0 0 1 1'>\n <g a=b/></svg>", "2:7 xml"},
    {"\xFF\xFE<\0", "1:1 encoding"},
    {std::string_view("<\0s\0", 4), "1:1 encoding"},
    {std::string_view("<svg viewBox='0 0 1 1'/>\n \0more", 31), "2:2 nul"},
    {std::string_view("<svg viewBox='0 0 1 1'>\0</svg>", 30), "1:24 nul; 1:24 xml"},
    // What is no artwork.
    {"<!-- x -->\n <html/>", "2:2 root"},
    {"<SVG/>", "1:1 root"},
    {"<s:svg xmlns:s='http://www.w3.org/2000/svg'/>", "1:1 root"},
    {"<svg viewBox='0 0 1 1'/>\n<svg/>", "2:1 second-root"},
    // The size.
    {"<svg/>", "1:1 viewbox-missing"},
    {"<svg width='20'/>", "1:1 viewbox-missing"},
    {"<svg width='20' height='100%'/>", "1:1 viewbox-missing"},
    {"<svg width='20' height='2em'/>", "1:1 viewbox-missing"},
    {"<svg width='20' height='10px'/>", ""},
    {"<svg viewBox='0 0 1 1' width='1em' height='1em'/>", ""},
    {"<svg viewBox='0 0 1'/>", "1:15 viewbox-invalid"},
    {"<svg viewBox='0 0 1 1 1'/>", "1:15 viewbox-invalid"},
    {"<svg viewBox='a' width='1' height='1'/>", "1:15 viewbox-invalid"},
    {"<svg viewBox='0 0 0 0'/>", "1:15 viewbox-empty"},
    {"<svg viewBox='0 0 0 1'/>", "1:15 negative-size"},
    {"<svg viewBox='0 0 1 -1'/>", "1:15 negative-size"},
    {"<svg width='0' height='0'/>", "1:1 viewbox-empty"},
    {"<svg width='2' height='3' viewBox='0 0 4 6' style='width:1em;height:1em;'/>", ""},
    {"<svg width='2' height='3' viewBox='0 0 6 4'/>", "1:13 size-ratio"},
    {"<svg viewBox='0 0 1 1' preserveAspectRatio='xMidYMid'/>", "1:45 preserve-aspect-ratio"},
    {"<svg viewBox='0 0 1 1' preserveAspectRatio='none'/>", "1:45 preserve-aspect-ratio"},
    {"<svg viewBox='0 0 1 1' preserveAspectRatio='xMinYMin slice'/>", "1:45 preserve-aspect-ratio"},
    {"<svg viewBox='0 0 1 1' preserveAspectRatio='xMinYMin meet'/>", ""},
    {"<svg viewBox='0 0 1 1' transform='scale(2)'/>", "1:35 transform-root"},
    // Elements by their prefix.
    {"<svg viewBox='0 0 1 1' xmlns:s='http://www.w3.org/2000/svg'><s:g/><s:title/></svg>",
     "1:61 element-prefix"},
    {"<svg viewBox='0 0 1 1' xmlns:s='other'><s:g/></svg>", ""},
};

TEST(CheckArtwork, Files)
{
    for (const CheckCase& row : kFileCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Places(row.input), row.want);
    }
}

// What stands inside a root; on line 2.
constexpr CheckCase kContentCases[] = {
    {"", ""},
    {"<g id='a'><path d='M1 2L3 4' fill='none' stroke='red' stroke-width='2'/></g>", ""},
    // Elements.
    {"<title>a</title><desc/><metadata><rdf:RDF/></metadata><sodipodi:namedview/>", ""},
    {"<text x='1'>a<tspan/></text>", "2:1 element-unsupported"},
    {"<svg/><image href='a.png'/><a><g/></a>",
     "2:1 element-unsupported; 2:7 element-unsupported; 2:28 element-unsupported"},
    {"<script/><animate/>", "2:1 element-ignored; 2:10 element-ignored"},
    // Definitions: where something refers to them.
    {"<filter id='a'/><mask id='b'/><mask/><g mask='url(#b)'/>",
     "2:17 element-ignored; 2:41 attribute-unread"},
    {"<pattern id='a'/><path d='M0 0' fill='url(#a)'/>", "2:1 element-ignored; 2:39 paint-unknown"},
    {"<foo/><Rect/>", "2:1 element-unknown; 2:7 element-unknown"},
    {"<rect width='1' height='0'/>", "2:1 shape-empty"},
    {"<circle/><ellipse rx='1'/>", "2:1 shape-empty; 2:10 shape-empty"},
    {"<polygon points=' '/><polyline/>", "2:1 shape-empty; 2:22 shape-empty"},
    {"<path/><path d=' '/>", "2:1 shape-empty; 2:8 shape-empty"},
    {"<g id='a'/><g id='b'/><g id='a'/>", "2:30 id-duplicate"},
    // Names.
    {"<g data-a='' aria-b='' inkscape:c='' font-size='1' onclick='' class=''/>", ""},
    {"<g mask='none' filter='url(#a)'/>", "2:16 attribute-unread"},
    {"<g transform-origin='1 1'/>", "2:4 attribute-unread"},
    {"<g fil='red'/>", "2:4 attribute-unknown"},
    {"<g fill='red' fill='blue'/>", "2:15 attribute-twice"},
    {"<g fill='&red;'/>", "2:10 entity; 2:10 color-invalid"},
    {"<g style='mix-blend-mode:multiply;transform:none;x:1;'/>",
     "2:11 property-unread; 2:35 property-unread; 2:50 property-unread"},
    {"<g style='paint-order:markers fill stroke;max-width:1px;'/>", ""},
    {"<g style='paint-order:stroke;'/>", "2:11 property-unread"},
    {"<g style='fil:red;'/>", "2:11 property-unknown"},
    {"<g style='--a:red;-inkscape-b:c;font-size:1;mask:none;'/>", "2:11 property-unread"},
    // Lengths.
    {"<rect width='1x' height='1'/>", "2:1 shape-empty; 2:14 length-unit"},
    {"<rect width='1' height='1' rx='auto' x='1em' y='2 3'/>",
     "2:32 length-invalid; 2:41 length-unit; 2:49 length-invalid"},
    {"<rect width='10%' height='1pt' x='2mm'/>", ""},
    {"<circle r='10%'/>", "2:12 percent-diagonal"},
    {"<circle r='-1'/><rect width='-1' height='1'/>", "2:12 negative-size; 2:30 negative-size"},
    {"<rect width='9' height='9' rx='2'/><rect width='9' height='9' rx='0'/>", "2:1 rounded-rect"},
    {"<rect width='9' height='9' rx='.5'/>", ""},
    {"<polygon points='1 2 x'/>", "2:18 points-invalid"},
    {"<polyline points='1'/>", "2:19 points-invalid"},
    {"<polyline points='1 2 3 4 5'/>", "2:19 points-odd"},
    // Path data.
    {"<path d='L1 2'/>", "2:10 path-stopped"},
    {"<path d='M1 2 L3'/>", "2:17 path-stopped"},
    {"<path d='M1 2L3 4 5x6'/>", "2:20 path-stopped"},
    {"<path d='M1 2L3 4X5 6'/>", "2:18 path-command"},
    {"<path d='M1 2L3 4+5+6'/>", "2:18 path-command"},
    {"<path d='M1 2L3 4ZL5 6'/>", "2:20 path-move"},
    {"<path d='M1 2A4 3 30 0 0 5 6'/>", "2:15 path-arc-rotation"},
    {"<path d='M1 2S3 4 5 6'/>", "2:15 path-smooth"},
    {"<path d='M1 2Q9 4 5 9'/><path d='M1 2Q2 3 3 4'/>", "2:15 path-quadratic"},
    // The one that is seen most; none, where it is not seen.
    {"<path d='M1 2q1 1 2 1Q3 9 9 9'/><path d='M1 2q.3 0 .3 .3'/>", "2:23 path-quadratic"},
    {"<path d='M1 2q.3 0 .3 .3' transform='scale(9)'/>", "2:15 path-quadratic"},
    {"<path d='M1 2A-3 3 0 0 0 5 6'/>", "2:15 path-negative-arc"},
    {"<path d='M1 2A0 1 0 0 0 5 6'/>", "2:10 path-not-finite"},
    {"<path d='M1e38 2L3 4l9e38 9e38'/>", "2:26 path-stopped"},
    {"<path d='M3e38 2l3e38 0'/>", "2:10 path-not-finite"},
    // Transforms.
    {"<g transform='translate(5,5) rotate(30)'/>", ""},
    {"<g transform='translate(1)translate(2) scale(1)'/>", ""},
    {"<g transform='scale(2)scale(3)'/><g transform='matrix(2 0 0 2 1 1) rotate(3)'/>", ""},
    {"<g transform='translate(5,5) scale(2)'/>", "2:15 transform-order"},
    {"<g transform='rotate(30) translate(1)'/>", "2:15 transform-order"},
    {"<g transform='rotate(30 1 2)'/><g transform='rotate(30 0 0)'/>", "2:15 transform-order"},
    {"<g transform='translate(5) SCALE(2)'/>", "2:28 transform-invalid"},
    {"<rect width='1' height='1' transform='rotate(45deg)'/>", "2:48 transform-invalid"},
    // Numbers and keywords.
    {"<g opacity='a' fill-opacity='1.5'/>", "2:13 number-invalid"},
    {"<g opacity='50%'/>", "2:13 number-percent"},
    {"<g opacity='inherit' fill-opacity='inherit'/>", "2:13 number-invalid"},
    {"<g stroke-miterlimit='a' stroke-miterlimit-x='a'/>",
     "2:23 number-invalid; 2:26 attribute-unknown"},
    {"<g fill-rule='even' clip-rule='a' stroke-linecap='a' stroke-linejoin='arcs' visibility='a'/>",
     "2:15 keyword-invalid; 2:32 keyword-invalid; 2:51 keyword-invalid; 2:71 keyword-invalid; "
     "2:89 keyword-invalid"},
    {"<g stroke-linecap='round'><g stroke-linecap='butt'/></g>", "2:46 keyword-default"},
    {"<g stroke-linejoin='bevel'><g stroke-linejoin='miter'/></g>", "2:48 keyword-default"},
    {"<g stroke-linecap='butt' stroke-linejoin='miter'/>", ""},
    {"<g style='fill:red !important;'/>", "2:16 important"},
    {"<g display='none'/><g display='inline'/>", "2:13 display"},
    {"<defs display='none'/><symbol style='display:none;'/>", ""},
    {"<g visibility='hidden'/><g visibility='collapse'/><g visibility='visible'/>",
     "2:16 visibility; 2:40 visibility"},
    // Colours.
    {"<g fill='RED' stroke='#ABC' color='rgb(1,2,3)'/><g fill='currentColor'/>", ""},
    {"<g fill='var(--a,red)' stroke='var(--b)'/><g fill='inherit' color='inherit'/>", ""},
    {"<g fill='rgba(1,2,3,.5)' stroke='lightblue' color='hsl(1,2%,3%)'/>",
     "2:10 color-invalid; 2:34 color-invalid; 2:52 color-invalid"},
    {"<g fill='#12345678'/><g fill='transparent'/><g fill='greenyellow'/><g fill=''/>",
     "2:10 color-invalid; 2:31 color-invalid; 2:54 color-invalid; 2:77 color-invalid"},
    {"<g color='greenyellow'/>", "2:11 color-cut"},
    {"<g fill='var(--a,currentColor)'/><g fill='var(--a, var(--b))'/>",
     "2:18 variable-fallback; 2:51 variable-fallback"},
    // Opacities, one by one.
    {"<g opacity='.5'><path d='M0 0L9 9'/><path d='M0 5L9 9'/><path d='M0 5L9 9'/></g>",
     "2:1 opacity-overlap"},
    {"<g opacity='.5'><path d='M0 0L9 9'/><path d='M9 0L19 9'/><g transform='translate(30)'>"
     "<path d='M0 0L9 9'/></g><path d='M0 0L9 9' fill='none'/></g>",
     ""},
    {"<g opacity='.5'><g><path d='M0 0L9 9'/></g><g transform='scale(.5)'>"
     "<rect width='1' height='1' transform='translate(4 4)'/></g></g>",
     "2:1 opacity-overlap"},
    {"<defs><g id='a'><path d='M0 0L9 9'/><path d='M0 0L9 9'/></g></defs>", ""},
    {"<path d='M0 0' stroke='red' opacity='.5'/><path d='M0 0' stroke='red' fill='none' "
     "opacity='.5'/><g opacity='.5'><path d='M0 0' stroke='red'/></g>",
     "2:1 opacity-overlap; 2:113 opacity-overlap"},
    // Strokes.
    {"<g stroke-width='a'/><g stroke-width='0'/>", "2:18 stroke-width-invalid"},
    {"<g stroke-width='10%'/><g stroke-width='-1'/>", "2:18 percent-diagonal; 2:41 number-invalid"},
    {"<g stroke='red' stroke-width='0'><g stroke-width='2'/><g stroke='red' stroke-width='2'/></g>",
     "2:51 stroke-stays-off"},
    {"<g stroke-dasharray='1,2 3'/><g stroke-dasharray='none'/>", ""},
    {"<g stroke-dasharray='1 a'/><g stroke-dasharray='1 -1'/>",
     "2:22 dash-invalid; 2:49 dash-invalid"},
    {"<g stroke-dasharray='1%'/>", "2:22 percent-diagonal"},
    {"<g stroke-dashoffset='1'/><g stroke-dashoffset='0'/>", "2:23 dash-offset"},
    // Gradients.
    {"<linearGradient id='a' gradientUnits='userSpaceOnUse'><stop stop-color='red'/>"
     "<stop offset='1'/></linearGradient><path d='M0 0' fill='url(#a)'/>",
     ""},
    {"<path d='M0 0' fill='url(#a)'/>", "2:22 paint-unknown"},
    {"<path d='M0 0' fill='url(#a) red'/>", ""},
    {"<path d='M0 0' stroke='url(#a)'/><linearGradient id='a'/>", "2:24 paint-later"},
    {"<linearGradient id='a' gradientUnits='userSpaceOnUse'><stop/><stop offset='1'/>"
     "</linearGradient>\n<g opacity='.5'><path d='M0 0' fill='url(#a)'/></g>\n"
     "<path d='M0 0' fill='url(#a)' fill-opacity='.5'/>\n"
     "<g id='b'><path d='M0 0' fill='url(#a)'/></g><use href='#b' opacity='.5'/>",
     "3:17 gradient-opacity; 4:1 gradient-opacity; 5:46 gradient-opacity"},
    {"<linearGradient id='a'><stop/><stop offset='1'/></linearGradient>"
     "<path d='M0 0' fill='none' stroke='url(#a)'/>",
     "2:66 gradient-stroke"},
    // A gradient of one stop is its colour.
    {"<linearGradient id='a'><stop/></linearGradient><path d='M0 0' stroke='url(#a)' "
     "fill='url(#a)' opacity='.5'/>",
     "2:48 opacity-overlap"},
    {"<linearGradient id='a'><stop/><stop offset='1'/></linearGradient>"
     "<path d='M0 0' fill='url(#a)'/><path d='M0 0' fill='url(#a)'/>",
     "2:1 gradient-units"},
    // It is not used, or used through another one.
    {"<linearGradient id='a'><stop/><stop offset='1'/></linearGradient><linearGradient id='b' "
     "href='#a' gradientUnits='userSpaceOnUse'/><path d='M0 0' fill='url(#b)'/>",
     ""},
    {"<linearGradient href='#a'/><linearGradient id='a'/>", "2:23 gradient-href-unknown"},
    {"<linearGradient id='a'/><linearGradient href='xa'/>", "2:47 gradient-href-form"},
    {"<linearGradient href=''/>", "2:23 gradient-href-empty"},
    {"<linearGradient id='a'><stop/></linearGradient><linearGradient href='#a'><stop/>"
     "</linearGradient>",
     "2:48 gradient-stops-added"},
    {"<linearGradient id='a' gradientUnits='userSpaceOnUse' x2='1' y2='1' "
     "gradientTransform='scale(2 1)'><stop/><stop offset='1'/></linearGradient>"
     "<path d='M0 0' fill='url(#a)'/>",
     "2:1 gradient-uneven"},
    {"<linearGradient id='a' gradientUnits='userSpaceOnUse' x2='1' gradientTransform='scale(2 1)' "
     "><stop/><stop offset='1'/></linearGradient><path d='M0 0' fill='url(#a)'/>",
     ""},
    {"<linearGradient gradientTransform='rotate(1 2 3)'/>", "2:36 transform-order"},
    {"<linearGradient id='a' gradientUnits='userSpaceOnUse' spreadMethod='reflect'><stop/>"
     "<stop offset='1'/></linearGradient><path d='M0 0' fill='url(#a)'/>",
     "2:1 spread-method"},
    {"<linearGradient spreadMethod='x'/>", "2:31 keyword-invalid"},
    {"<linearGradient id='a' spreadMethod='repeat'/><linearGradient href='#a' spreadMethod='pad'/>",
     "2:87 keyword-default"},
    {"<radialGradient id='a' gradientUnits='userSpaceOnUse' r='9'><stop/><stop offset='.5'/>"
     "<stop offset='1'/></radialGradient><path d='M0 0' fill='url(#a)'/>",
     "2:1 radial-stops"},
    {"<radialGradient id='a' gradientUnits='userSpaceOnUse' r='9' fx='1' cx='5'><stop/>"
     "<stop offset='1'/></radialGradient><path d='M0 0' fill='url(#a)'/>",
     "2:1 radial-focus"},
    {"<radialGradient id='a' gradientUnits='userSpaceOnUse' r='9' fx='15' fy='20'><stop/>"
     "<stop offset='1'/></radialGradient><path d='M0 0' fill='url(#a)'/>",
     ""},
    {"<radialGradient id='a' gradientUnits='userSpaceOnUse'><stop/><stop offset='1'/>"
     "</radialGradient><path d='M0 0' fill='url(#a)'/>",
     "2:1 radial-radius"},
    {"<linearGradient><stop offset='50%' stop-color='var(--a,red)' stop-opacity='a'/>"
     "</linearGradient>",
     "2:31 number-percent; 2:48 stop-variable; 2:76 number-invalid"},
    // Clip paths.
    {"<clipPath id='a'><path d='M0 0'/></clipPath><g clip-path='url(#a)'/>", ""},
    {"<g clip-path='none'/>", "2:15 clip-path-short"},
    {"<g clip-path='circle(1)'/><g clip-path=\"url('#a')\"/>",
     "2:15 clip-path-form; 2:41 clip-path-form"},
    {"<g clip-path='url(#a)'/>", "2:15 clip-path-unknown"},
    {"<g clip-path='url(#a)'/><clipPath id='a'><path d='M0 0'/></clipPath>",
     "2:15 clip-path-later"},
    {"<clipPath id='a'><g/></clipPath><g clip-path='url(#a)'/>",
     "2:18 clip-path-child; 2:47 clip-path-empty"},
    {"<clipPath id='a' clipPathUnits='objectBoundingBox'/>", "2:33 clip-path-units"},
    {"<clipPath id='a' transform='scale(2)'/>", "2:29 attribute-unread"},
    {"<clipPath id='a'><title/><path d='M0 0'/><rect/><text/></clipPath>",
     "2:42 clip-path-child; 2:49 clip-path-child"},
    {"<clipPath id='a'><path d='M0 0'/></clipPath><clipPath id='b' clip-path='url(#a)'/>"
     "<clipPath id='c'><path d='M0 0' clip-path='url(#a)'/></clipPath>",
     "2:45 clip-path-clipped; 2:100 clip-path-clipped"},
    // References.
    {"<g id='a'/><use href='#a' x='1'/>", ""},
    {"<use/><use href='a.svg#b'/>", "2:1 use-href; 2:18 use-href"},
    {"<use href='#a'/><linearGradient id='a'/>", "2:1 use-unknown"},
    {"<use href='#a'/><defs id='a'/>", "2:1 use-unknown"},
    {"<use xlink:href='#a'/><defs><path id='a' d='M0 0'/></defs>", ""},
    {"<path id='a' d='M0 0'/><use href='#a' fill='red'/>", "2:24 use-style"},
    {"<path id='a' d='M0 0'/><g fill='red'><use href='#a'/></g>", "2:38 use-style"},
    {"<path id='a' d='M0 0' fill='red'/><use href='#a' fill='blue' stroke-width='9'/>", ""},
    {"<g id='a'><g fill='red'><path d='M0 0'/></g></g><use href='#a' fill='blue'/>", ""},
    {"<g id='a'><g fill='red'><path d='M0 0'/></g><path d='M0 0'/></g><use href='#a' fill='blue'/>",
     "2:65 use-style"},
    {"<symbol id='a'/><use href='#a' width='1'/>", "2:17 use-size"},
    {"<g id='a'/><use href='#a' width='1'/>", ""},
    {"<g id='a'><use href='#a'/></g>", "2:11 use-cycle"},
    {"<use id='a' href='#b'/><use id='b' href='#a'/>", "2:24 use-cycle"},
    {"<symbol id='a' viewBox='0 0 1 1'/>", "2:25 symbol-viewbox"},
    {"<symbol id='a' viewBox='0 0 30 40'/><symbol id='b' viewBox='1'/>", "2:61 viewbox-invalid"},
    {"<symbol id='a' fill='red' opacity='.5'/>", "2:1 symbol-style"},
    // Style sheets and style attributes.
    {"<style>.a{fill:red;}</style><g class='a'/>", ""},
    {"<style><![CDATA[.a{fill:red;}]]></style><g class='a b'/>", ""},
    {"<g style='/*a*/fill:red;'/>", "2:11 style-comment"},
    {"<g style='fill:red'/>", "2:11 declaration-open"},
    {"<g style='fill:red; stroke : blue'/>", "2:21 declaration-open"},
    {"<g style='fill:red;font-size:1'/><g style='nothing'/>", ""},
    {"<g style='fill:red;fill:blue;'/><g style='fill:red;fill:red;'/>", "2:20 declaration-twice"},
    {"<g style='fill:red;;'/>", "2:20 declaration-no-colon"},
    {"<style>.a{fill;}</style>", "2:11 declaration-no-colon"},
    {"<style>.{fill:red;}</style>", "2:8 selector-empty"},
    {"<style>.a{fill:red;}</style><g class='b a' style='fill:blue;'/>", "2:41 class-over-style"},
    {"<style>.a{fill:red;} .b{fill:blue;}</style><g class='b a'/><g class='a b'/>",
     "2:56 class-order"},
    {"<style>.a{fill:red;} .b{fill:blue;} .a{x:y;}</style><g class='b a'/>",
     "2:40 property-unread"},
    {"<style>.a{fill:red;}</style><g class='a' style='fill:red;stroke:red;'/>", ""},
    {"<style>g{fill:red;} #a, .b .c{fill:x;} .d{fill:red;}</style>",
     "2:8 selector-unmatched; 2:21 selector-unmatched; 2:25 selector-unmatched"},
    {"<style>@import 'a'; .a{fill:red;}</style>", "2:8 at-rule"},
    {"<g class='a'/><style>.b{fill:red;} .a{fill:red;}</style>", "2:36 style-late"},
    {"<style>.a{fill:red;}<!-- x -->.b{fill:red;}</style>", "2:21 style-split"},
    {"<style><!-- .a{fill:red;} --></style>", "2:8 style-split"},
    {"<style media='print'>.a{fill:red;}</style>", "2:15 style-media"},
    {"<style>.a{fill:red;} /* x */ .b{fil/*y*/l:x;}</style>", "2:43 color-invalid"},
    // Nothing in an element that is not read is looked at, but for what ends the reading.
    {"<text fill='x' clip-path='none'><g fill='x'/></text>",
     "2:1 element-unsupported; 2:27 clip-path-short"},
    {"<title style='fill:x;;'/>", "2:22 declaration-no-colon"},
};

TEST(CheckArtwork, Content)
{
    for (const CheckCase& row : kContentCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(PlacesInside(row.input), row.want);
    }
}

// References that multiply, levels, nesting, many findings: what only large files have.
std::string Multiplying()
{
    std::string text = "<svg viewBox='0 0 1 1'><path id='a0' d='M0 0'/>";
    for (int i = 1; i <= 20; ++i) {
        const std::string from = "<use href='#a" + std::to_string(i - 1) + "'/>";
        text += "<g id='a" + std::to_string(i) + "'>" + from + from + "</g>";
    }
    return text + "</svg>";
}

std::string Chain(int length)
{
    std::string text = "<svg viewBox='0 0 1 1'><path id='a0' d='M0 0'/>";
    for (int i = 1; i <= length; ++i) {
        text += "<use id='a" + std::to_string(i) + "' href='#a" + std::to_string(i - 1) + "'/>";
    }
    return text + "</svg>";
}

std::string Nested(int levels)
{
    std::string text = "<svg viewBox='0 0 1 1'>";
    for (int i = 1; i < levels; ++i) {
        text += "<g>";
    }
    for (int i = 1; i < levels; ++i) {
        text += "</g>";
    }
    return text + "</svg>";
}

TEST(CheckArtwork, MultiplyingReferences)
{
    EXPECT_EQ(Places(Multiplying()), "1:1 use-multiplies");
}

TEST(CheckArtwork, Levels)
{
    // The root's own group and the root are levels, and the last use leads to the path.
    EXPECT_EQ(Places(Chain(1021)), "");
    EXPECT_EQ(Places(Chain(1022)), "1:1 use-levels");
    EXPECT_EQ(Places(Chain(100000)), "1:1 use-multiplies; 1:1 use-levels");
}

TEST(CheckArtwork, Nesting)
{
    EXPECT_EQ(Places(Nested(512)), "");
    EXPECT_EQ(Places(Nested(513)), "1:1557 nesting");
}

TEST(CheckArtwork, FindingsAreLimited)
{
    std::string text = "<svg viewBox='0 0 1 1'>";
    constexpr std::size_t kMore = 7;
    for (std::size_t i = 0; i < Reporter::kMaxFindings + kMore; ++i) {
        text += "<foo/>";
    }
    const std::vector<ArtworkFinding> findings = CheckArtwork(text + "</svg>");
    ASSERT_EQ(findings.size(), Reporter::kMaxFindings + 1);
    EXPECT_EQ(findings.back().message, "7 further findings are not listed");
}

TEST(CheckArtwork, Places)
{
    constexpr CheckCase kCases[] = {
        // Line ends.
        {"<svg viewBox='0 0 1 1'>\r\n<foo/>\r\n\r\n<foo/></svg>",
         "2:1 element-unknown; 4:1 element-unknown"},
        {"<svg viewBox='0 0 1 1'>\r<foo/>\n\r<foo/></svg>",
         "2:1 element-unknown; 4:1 element-unknown"},
        // Characters, not bytes; a byte-order mark is none.
        {"\xEF\xBB\xBF<svg viewBox='0 0 1 1'><foo/></svg>", "1:24 element-unknown"},
        {"<svg viewBox='0 0 1 1'><g id='\u00e4\u20ac\U0001F600'/><foo/></svg>",
         "1:37 element-unknown"},
        {"<svg viewBox='0 0 1 1'><g style='font-family:\u00e4;fil:x;'/></svg>",
         "1:48 property-unknown"},
        // References are one character in the value and more in the file.
        {"<svg viewBox='0 0 1 1'><g style='font-family:&quot;a&#x20AC;&quot;;fil:x;'/></svg>",
         "1:68 property-unknown"},
        {"<svg viewBox='0 0 1 1'><path d='M0&#32;0&#x4c;1&#10;2x'/></svg>", "1:54 path-command"},
        // Sheets: line ends, comments and references in front.
        {"<svg viewBox='0 0 1 1'><style>\r\n /* a */ .a {\r\n  fill: x;\r\n }\r\n</style></svg>",
         "3:9 color-invalid"},
        {"<svg viewBox='0 0 1 1'><style>/*&lt;\n*/.a{fill:x;}</style></svg>", "2:11 color-invalid"},
        {"<svg viewBox='0 0 1 1'><style><![CDATA[/*&lt;*/.a{fill:x;}]]></style></svg>",
         "1:56 color-invalid"},
    };
    for (const CheckCase& row : kCases) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(Places(row.input), row.want);
    }
}

TEST(CheckArtwork, LongLine)
{
    std::string text = "<svg viewBox='0 0 1 1'><path d='M0 0";
    constexpr std::size_t kLength = std::size_t{1} << 20U;
    while (text.size() < kLength) {
        text += "L1 1";
    }
    const std::size_t column = text.size() + 1;
    EXPECT_EQ(Places(text + "x'/></svg>"), "1:" + std::to_string(column) + " path-command");
}

/// All inputs of the tables.
std::vector<std::string> AllInputs()
{
    std::vector<std::string> inputs = {Multiplying(), Chain(1022), Nested(513)};
    for (const CheckCase& row : kFileCases) {
        inputs.emplace_back(row.input);
    }
    for (const CheckCase& row : kContentCases) {
        inputs.push_back("<svg viewBox='0 0 30 40'>\n" + std::string(row.input) + "\n</svg>");
    }
    return inputs;
}

// What is not told by CheckArtwork itself, or only in large files.
TEST(CheckArtwork, EachRuleHasACase)
{
    std::set<std::string_view> seen = {"file", "more-findings"};
    for (const std::string& input : AllInputs()) {
        for (const ArtworkFinding& finding : CheckArtwork(input)) {
            seen.insert(RowOf(finding.rule).id);
        }
    }
    for (const RuleRow& row : RuleTable()) {
        EXPECT_TRUE(seen.contains(row.id)) << row.id;
    }
}

bool EngineThrows(const std::string& text)
{
    try {
        SVGLoom::CreateDocument(text, std::make_shared<CheckedRenderer>());
        return false;
    } catch (const std::exception&) {
        return true;
    }
}

bool TellsTheEnd(const std::string& text)
{
    for (const ArtworkFinding& each : CheckArtwork(text)) {
        if (each.rule == Rule::kClipPathShort || each.rule == Rule::kGradientHrefEmpty ||
            each.rule == Rule::kDeclarationNoColon || each.rule == Rule::kSelectorEmpty) {
            return true;
        }
    }
    return false;
}

TEST(CheckArtwork, TellsWhatEndsTheReading)
{
    for (const std::string& input : AllInputs()) {
        SCOPED_TRACE(input);
        EXPECT_EQ(TellsTheEnd(input), EngineThrows(input));
    }
}

TEST(CheckArtwork, CutAnywhere)
{
    for (const std::string& input : AllInputs()) {
        constexpr std::size_t kLongest = 400;
        for (std::size_t size = 0; size < std::min(input.size(), kLongest); ++size) {
            const std::string cut(input, 0, size);
            EXPECT_EQ(TellsTheEnd(cut), EngineThrows(cut)) << cut;
        }
    }
}

}  // namespace
}  // namespace svgloom
