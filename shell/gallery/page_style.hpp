#pragma once

#include <string_view>

namespace korl {

/// The gallery's style sheet.
inline constexpr std::string_view page_style = R"css(
:root {
    color-scheme: light dark;
    --page: #f6f5f2; --card: #ffffff; --text: #1d2024; --faint: #5c636b; --line: #dcdad4; --accent: #8a5a00;
    --code: #f1efe9; --failure: #a3241b;
}
@media (prefers-color-scheme: dark) {
    :root {
        --page: #15171a; --card: #1e2125; --text: #e6e7e9; --faint: #a0a7af; --line: #33383e; --accent: #f0b450;
        --code: #16181b; --failure: #ff8a7d;
    }
}
* { box-sizing: border-box; }
body {
    margin: 0 auto; padding: 1.5rem 1rem 4rem; max-width: 70rem; background: var(--page); color: var(--text);
    font: 1rem/1.5 system-ui, "DejaVu Sans", sans-serif;
}
h1 { margin: 0 0 .25rem; font-size: 2rem; line-height: 1.2; }
h2 { margin: 0; font-size: 1.5rem; line-height: 1.3; }
h2 img { width: 1.5em; height: 1.5em; object-fit: contain; vertical-align: middle; }
h3 { margin: 1.5rem 0 .5rem; font-size: 1rem; color: var(--accent); }
p { max-width: 45rem; margin: .5rem 0; }
nav { display: flex; flex-wrap: wrap; gap: .5rem; margin: 1rem 0; }
nav a {
    padding: .25rem .75rem; border: 1px solid var(--line); border-radius: 1rem; background: var(--card);
    color: var(--accent); text-decoration: none;
}
nav a:hover, nav a:focus-visible { border-color: var(--accent); }
section {
    margin: 1.5rem 0; padding: 1.25rem; border: 1px solid var(--line); border-radius: .75rem;
    background: var(--card);
}
.category { margin: 0; color: var(--faint); font-size: .875rem; }
.failure { color: var(--failure); }
.pictures { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(17rem, 100%), 1fr)); gap: 1rem; margin-top: 1rem; }
figure { margin: 0; }
figure img { display: block; width: 100%; height: auto; border-radius: .5rem; }
figcaption { margin-top: .375rem; color: var(--faint); font-size: .875rem; }
.scroll { overflow-x: auto; }
table { width: 100%; border-collapse: collapse; font-size: .9375rem; }
th, td { padding: .375rem .75rem .375rem 0; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; }
th { color: var(--faint); font-weight: 600; }
code { font-family: ui-monospace, "DejaVu Sans Mono", monospace; font-size: .875em; }
pre {
    margin: 0; padding: .75rem 1rem; overflow-x: auto; border-radius: .5rem; background: var(--code);
    line-height: 1.4; tab-size: 8;
}
)css";

} // namespace korl
