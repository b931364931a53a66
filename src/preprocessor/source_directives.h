// The directives that deal with files and positions: #include, #line and the line marker.
#pragma once

namespace tdm {

void handle_include();
void handle_line();

/// `# 33 "a.tdm"`: its number has been read.
void handle_line_marker();

} // namespace tdm
