#include "reports/engine/exportrows.h"
#include "reports/engine/exports.h"

#include <ostream>

namespace merchantry::reports {
namespace {

constexpr int kRowsBetweenQuestions = 4096;

const char* const kStyle = R"(body{font:14px/1.4 Inter,"Segoe UI",sans-serif;color:#14171a;margin:2rem}
h1{font-size:1.6rem;margin:0}h2{font-size:1.1rem;font-weight:400;margin:0}.b{display:flex;gap:4rem;margin:1rem 0}p{color:#6a6f76;margin:.2rem 0 1rem}
table{border-collapse:collapse;width:100%}th{text-align:left;border-bottom:1px solid #14171a;vertical-align:bottom}
td,th{padding:.15rem .6rem .15rem 0}.n{text-align:right}
tr.h td{background:#eef0f3;font-weight:600}tr.f td{border-top:1px solid #c8ccd2;font-weight:600}tr.t td{border-top:3px double #14171a;font-weight:700}
)";

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '&')
            result += "&amp;";
        else if (c == '\n')
            result += "<br>";
        else
            result += c;
    }
    return result;
}

class Html {
public:
    Html(const Report& report, std::ostream& out) : outline_(report.outline()), out_(out) {
        for (std::size_t i = 0; i < outline_.columns().size(); ++i)
            if (!outline_.columns()[i].definition->hide)
                shown_.push_back(i);
    }

    void head(const PageHead& head, const std::string& title) {
        out_ << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>" << escaped(title) << "</title>\n<style>"
             << kStyle << "</style></head><body>\n<h1>" << escaped(title) << "</h1>\n"
             << subtitle() << "<p>" << escaped(head.store) << ", " << escaped(head.made.toShortText())
             << (head.criteria.empty() ? "" : "<br>" + escaped(head.criteria)) << "</p>\n";
        blocks(outline_.definition().headers);
        out_ << "<table><thead><tr>";
        for (const std::size_t column : shown_)
            out_ << "<th" << alignment(column) << ">" << escaped(outline_.columns()[column].definition->title) << "</th>";
        out_ << "</tr></thead><tbody>\n";
    }
    void foot() {
        const Definition& definition = outline_.definition();
        out_ << "</tbody></table>\n";
        if (outline_.rows().rowCount() == 0)
            out_ << "<p>" << escaped(definition.page.empty) << "</p>\n";
        blocks(definition.footers);
        out_ << "</body></html>\n";
    }
    void line(const Band& band) {
        if (band.kind == Band::Kind::Header) {
            if (!band.label.empty())
                out_ << "<tr class=\"h\"><td colspan=\"" << shown_.size() << "\">" << escaped(band.label) << "</td></tr>\n";
            return;
        }
        const bool totals = band.kind != Band::Kind::Row;
        out_ << (band.kind == Band::Kind::Footer ? "<tr class=\"f\">" : totals ? "<tr class=\"t\">" : "<tr>");
        std::size_t from = 0;
        if (totals) {
            while (from < shown_.size() && band.cells[shown_[from]].empty())
                ++from;
            if (from > 0)
                out_ << "<td colspan=\"" << from << "\">" << escaped(band.label) << "</td>";
        }
        for (std::size_t i = from; i < shown_.size(); ++i)
            out_ << "<td" << alignment(shown_[i]) << ">" << escaped(band.cells[shown_[i]]) << "</td>";
        out_ << "</tr>\n";
    }

private:
    // With the fields of the first row; empty without rows.
    std::string filled(const std::string& text, int line) const {
        const Definition& definition = outline_.definition();
        const db::RowStore& rows = outline_.rows();
        return rows.rowCount() == 0 ? "" : escaped(FieldText(text, rows, definition.file.filename().string(), line).in(rows, 0));
    }
    std::string subtitle() const {
        const std::string words = escaped(outline_.subtitle());
        return words.empty() ? "" : "<h2>" + words + "</h2>\n";
    }
    // The lines of a form's head or foot, two blocks side by side; a line with nothing to tell is left out.
    void blocks(const std::vector<TextLine>& lines) {
        std::string left;
        std::string right;
        for (const TextLine& line : lines)
            if (const std::string words = filled(line.text, line.line); !words.empty())
                (line.rightBlock ? right : left) += (line.bold ? "<b>" + words + "</b>" : words) + "<br>";
        if (!left.empty() || !right.empty())
            out_ << "<div class=\"b\"><div>" << left << "</div><div>" << right << "</div></div>\n";
    }
    const char* alignment(std::size_t column) const { return outline_.columns()[column].kind.isNumber ? " class=\"n\"" : ""; }

    const Outline& outline_;
    std::ostream& out_;
    std::vector<std::size_t> shown_;
};

} // namespace

bool writeHtml(const Report& report, std::ostream& out, const KeepWriting& goOn) {
    requireColumns(report.outline());
    Html html(report, out);
    html.head(report.head(), report.definition().title);
    Walk walk(report.outline());
    int lines = 0;
    while (walk.peek()) {
        html.line(walk.take());
        if (goOn && ++lines % kRowsBetweenQuestions == 0 && !goOn(lines))
            return false;
    }
    html.foot();
    return true;
}

} // namespace merchantry::reports
