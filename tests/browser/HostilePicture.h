#pragma once

#include "tests/browser/Screenshot.h"

/// A green square. Its scripts, were they run, would make it red; what it refers to, were it loaded,
/// would lay blue on it.
inline constexpr auto HOSTILE = R"svg(<?xml version="1.0"?>
<?xml-stylesheet href="file:///tmp/FL0/blue.css" type="text/css"?>
<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 9 9" width="900" height="900" shape-rendering="crispEdges"
     onload="document.getElementById('loaded').setAttribute('fill', '#fe0102')">
<style>@import url(file:///tmp/FL0/blue.css);</style>
<rect width="9" height="9" fill="#02fe01"/>
<rect id="loaded" width="4" height="4" fill="#02fe01"/>
<rect id="run" x="5" width="4" height="4" fill="#02fe01"/>
<image href="file:///tmp/FL0/blue.svg" y="5" width="4" height="4"/>
<foreignObject x="5" y="5" width="4" height="4">
<body xmlns="http://www.w3.org/1999/xhtml" style="margin:0">
<img src="file:///tmp/FL0/blue.svg" onerror="parent.document.title='owned'" style="width:4px;height:4px"/>
<script>document.documentElement.setAttribute('owned', '1')</script></body></foreignObject>
<script>
document.getElementById('run').setAttribute('fill', '#fe0102');
try { top.document.title = 'owned'; } catch (refused) {}
</script></svg>)svg";
inline constexpr auto BLUE =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 4 4"><rect width="4" height="4" fill="#0102fe"/></svg>)";
inline constexpr Rgb HARMLESS_COLOUR{0x02, 0xFE, 0x01};
inline constexpr Rgb SCRIPT_COLOUR{0xFE, 0x01, 0x02};
inline constexpr Rgb LOADED_COLOUR{0x01, 0x02, 0xFE};
