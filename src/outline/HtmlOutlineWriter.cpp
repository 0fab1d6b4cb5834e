#include "outline/HtmlOutlineWriter.h"

#include "outline/MarkupText.h"
#include "outline/OutlineSyntax.h"

namespace quillery {

namespace {

void appendWithBreaks(std::string& out, std::string_view text) {
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find('\n', start);
        markup_text::appendEscaped(out, text.substr(start, end == std::string_view::npos
                                                               ? std::string_view::npos
                                                               : end - start));
        if (end == std::string_view::npos)
            return;
        out += "<br>\n";
        start = end + 1;
    }
}

} // namespace

HtmlOutlineWriter::HtmlOutlineWriter(std::ostream& out, std::string_view title,
                                     PictureSource pictureSource)
    : m_out(out)
    , m_pictureSource(std::move(pictureSource)) {
    std::string& text = m_out.text();
    text += "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>";
    markup_text::appendEscaped(text, title);
    text += "</title>\n</head>\n<body>\n<ul>\n";
}

void HtmlOutlineWriter::closeItem() {
    if (m_hasList.back())
        m_out.text() += "</ul>\n";
    m_out.text() += "</li>\n";
    m_hasList.pop_back();
}

void HtmlOutlineWriter::note(std::size_t depth, const NoteView& view) {
    while (m_hasList.size() > depth)
        closeItem();
    std::string& out = m_out.text();
    if (depth > 0 && !m_hasList.back()) {
        m_hasList.back() = 1;
        out += "<ul>\n";
    }
    out += "<li>";
    if (view.picture) {
        std::optional<std::string> source;
        if (m_pictureSource)
            source = m_pictureSource(*view.picture);
        if (!source && !view.picture->file.empty())
            source = view.picture->file.string();
        if (source) {
            out += "<img src=\"";
            markup_text::appendEscaped(out, *source);
            out += "\" alt=\"picture\">";
        } else {
            NoteView pictureOnly;
            pictureOnly.picture = view.picture;
            markup_text::appendEscaped(out, outline_syntax::noteLine(pictureOnly, false));
        }
        if (!view.text.empty())
            out += "<br>\n";
    }
    const bool textIsUrl = view.url && *view.url == view.text;
    if (textIsUrl) {
        out += "<a href=\"";
        markup_text::appendEscaped(out, *view.url);
        out += "\">";
    }
    appendWithBreaks(out, view.text);
    if (textIsUrl) {
        out += "</a>";
    } else if (view.url) {
        out += " <a href=\"";
        markup_text::appendEscaped(out, *view.url);
        out += "\">";
        markup_text::appendEscaped(out, *view.url);
        out += "</a>";
    }
    out += '\n';
    m_hasList.push_back(0);
    m_out.maybeFlush();
}

void HtmlOutlineWriter::finish() {
    while (!m_hasList.empty())
        closeItem();
    m_out.text() += "</ul>\n</body>\n</html>\n";
    m_out.flush();
}

} // namespace quillery
