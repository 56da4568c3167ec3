#include "shell/gallery/gallery_page.hpp"

#include "shell/gallery/html.hpp"
#include "shell/gallery/page_style.hpp"

#include <algorithm>
#include <fmt/core.h>

namespace korl {

namespace {

using Row = std::vector<std::string>;

/// A table; `is_code` says of each column whether its cells are set like code.
std::string table(const Row& head, const std::vector<Row>& rows, const std::vector<bool>& is_code) {
    std::string html = "<div class=\"scroll\"><table>\n<thead><tr>";
    for (const std::string& title : head)
        html += fmt::format(R"(<th scope="col">{}</th>)", escapeHtml(title));
    html += "</tr></thead>\n<tbody>\n";
    for (const Row& row : rows) {
        html += "<tr>";
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string text = row[i].empty() ? "–" : escapeHtml(row[i]);
            html += is_code[i] && !row[i].empty() ? fmt::format("<td><code>{}</code></td>", text)
                                                  : fmt::format("<td>{}</td>", text);
        }
        html += "</tr>\n";
    }
    return html + "</tbody></table></div>\n";
}

std::string parameterTable(const std::vector<ParameterRow>& parameters) {
    if (parameters.empty())
        return "<p>None.</p>\n";
    const bool has_more = std::any_of(parameters.begin(), parameters.end(),
                                      [](const ParameterRow& row) { return !row.more.empty(); });
    Row head{"Parameter", "Type", "Default", "Range", "Unit", "Expert level", "What it is"};
    if (has_more)
        head.emplace_back("More");
    std::vector<Row> rows;
    for (const auto& [parameter, more] : parameters) {
        Row row{parameter.name,       parameter.kind, parameter.default_text,
                rangeText(parameter), parameter.unit, std::to_string(parameter.expert_level),
                parameter.description};
        if (has_more)
            row.push_back(more);
        rows.push_back(std::move(row));
    }
    return table(head, rows, {true, false, true, false, false, false, false, false});
}

std::string uniformTable(const std::vector<std::pair<std::string, std::string>>& uniforms) {
    if (uniforms.empty())
        return "<p>None.</p>\n";
    std::vector<Row> rows;
    rows.reserve(uniforms.size());
    for (const auto& [name, value] : uniforms)
        rows.push_back({name, value});
    return table({"Uniform", "Value"}, rows, {true, true});
}

std::string figure(const TypeSheet& sheet, const PathPicture& picture) {
    const std::string alternative =
        fmt::format("Hilly land, a column and a sphere, lit by {} on the {}", sheet.name, picture.path);
    std::string html = fmt::format("<figure>{}<figcaption>{}", imageElement(picture.image, alternative),
                                   escapeHtml(picture.path));
    for (const std::string& report : picture.reports)
        html += fmt::format("<br><small>{}</small>", escapeHtml(report));
    return html + "</figcaption></figure>\n";
}

/// The blank lines around a snippet are left out; what stands between them is kept as it is.
std::string trimmed(const std::string& snippet) {
    const std::size_t first = snippet.find_first_not_of("\r\n");
    return first == std::string::npos
               ? ""
               : snippet.substr(first, snippet.find_last_not_of("\r\n \t") + 1 - first);
}

std::string section(const TypeSheet& sheet) {
    const std::string name = escapeHtml(sheet.name);
    const std::string icon = sheet.icon ? imageElement(*sheet.icon, "Icon of " + sheet.name) + " " : "";
    std::string html = fmt::format("<section id=\"{0}\">\n<h2>{1}{0}</h2>\n", name, icon);
    if (!sheet.category.empty())
        html += fmt::format("<p class=\"category\">{}</p>\n", escapeHtml(sheet.category));
    if (!sheet.description.empty())
        html += fmt::format("<p>{}</p>\n", escapeHtml(sheet.description));
    if (!sheet.failure.empty())
        html += fmt::format("<p class=\"failure\">Not all of it can be shown: {}</p>\n",
                            escapeHtml(sheet.failure));
    if (!sheet.pictures.empty()) {
        html += "<div class=\"pictures\">\n";
        for (const PathPicture& picture : sheet.pictures)
            html += figure(sheet, picture);
        html += "</div>\n";
    }
    html += "<h3>Parameters</h3>\n" + parameterTable(sheet.parameters);
    if (!sheet.snippets.empty())
        html += fmt::format("<h3>Uniforms</h3>\n{}<h3>GLSL</h3>\n", uniformTable(sheet.uniforms));
    for (const std::string& snippet : sheet.snippets)
        html += fmt::format("<pre tabindex=\"0\"><code>{}</code></pre>\n", escapeHtml(trimmed(snippet)));
    return html + "</section>\n";
}

} // namespace

std::string galleryPage(const std::vector<TypeSheet>& sheets) {
    std::string html = fmt::format(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>Korl: the lights</title>\n<style>{}</style>\n</head>\n"
        "<body>\n<header>\n<h1>Korl: the lights</h1>\n"
        "<p>Every type that the loaded modules bring, with its defaults. Each light answers the renderer "
        "twice: with a GLSL snippet, evaluated for each pixel, and with a fixed-function OpenGL light.</p>\n"
        "<nav aria-label=\"Types\">\n",
        page_style);
    for (const TypeSheet& sheet : sheets)
        html += fmt::format("<a href=\"#{0}\">{0}</a>\n", escapeHtml(sheet.name));
    html += "</nav>\n</header>\n<main>\n";
    for (const TypeSheet& sheet : sheets)
        html += section(sheet);
    return html + "</main>\n</body>\n</html>\n";
}

} // namespace korl
