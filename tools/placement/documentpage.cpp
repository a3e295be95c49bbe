#include "tools/placement/documentpage.h"

#include "tools/placement/openapidocument.h"

namespace brimlet::placement {

namespace {

std::string escaped(std::string_view text) {
    std::string html;
    for (const char letter : text) {
        switch (letter) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        default:
            html += letter;
        }
    }
    return html;
}

} // namespace

std::string documentPage() {
    return R"(<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>Brimlet placement service</title>
<style>
body { max-width: 62rem; margin: 2rem auto; padding: 0 1rem; font: 1rem/1.5 sans-serif; }
pre { white-space: pre-wrap; font: 0.85rem/1.5 monospace; }
</style></head>
<body>
<h1>Brimlet placement service</h1>
<p>The development placement service: it is for trying and testing, and pays nothing to anyone.
This is what Brimlet sends to a placement service and what it reads, as an OpenAPI 3.1 document
(<a href="/openapi.yaml">openapi.yaml</a>). Replies to look at:
<a href="/api/display">the week's placement</a>,
<a href="/brands/quiet-bicycle">a brand's page</a>.</p>
<pre>
)" + escaped(openApiDocument()) +
           "</pre>\n</body>\n</html>\n";
}

} // namespace brimlet::placement
