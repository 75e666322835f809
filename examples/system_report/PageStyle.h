#pragma once

namespace SystemReport {

/// The style sheet of the page: light or dark as the reader's system, for wide and narrow windows
/// and for paper.
constexpr const char *PageStyle = R"(
:root { color-scheme: light dark;
  --page: #f4f6f8; --card: #ffffff; --text: #1c2630; --quiet: #5a6875; --rule: #dde3e8;
  --load: #1f6fb2; --memory: #1d8159; }
@media (prefers-color-scheme: dark) { :root {
  --page: #12171c; --card: #1b2228; --text: #e3e8ec; --quiet: #9aa7b2; --rule: #313b44;
  --load: #6db3ee; --memory: #5cc796; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--text);
  font: 15px/1.5 system-ui, "Segoe UI", Roboto, "DejaVu Sans", sans-serif; }
main { max-width: 72rem; margin: 0 auto; padding: 2rem 1.25rem 3rem; }
h1 { margin: 0; font-size: 1.7rem; line-height: 1.25; overflow-wrap: anywhere; }
h2 { margin: 0 0 .6rem; font-size: 1.05rem; }
p { margin: 0 0 .6rem; overflow-wrap: anywhere; }
.quiet { color: var(--quiet); }
.card { background: var(--card); border: 1px solid var(--rule); border-radius: 10px;
  padding: 1rem 1.15rem; min-width: 0; }
.notice { margin: 1.1rem 0; font-size: .93rem; }
.notice p:last-child, .card > p:last-child { margin-bottom: 0; }
dl { display: grid; grid-template-columns: repeat(auto-fit, minmax(9.5rem, 1fr)); gap: 1rem;
  margin: 0 0 1rem; }
dt { color: var(--quiet); font-size: .85rem; }
dd { margin: 0; font-size: 1.35rem; font-weight: 600; overflow-wrap: anywhere; }
.grid-of-cards { display: grid; gap: 1rem;
  grid-template-columns: repeat(auto-fit, minmax(min(100%, 27rem), 1fr)); }
.sections { margin-top: 1rem; align-items: start; }
.wide { grid-column: 1 / -1; }
figure { margin: 0; min-width: 0; }
figcaption { font-weight: 600; margin-bottom: .3rem; }
figcaption span { color: var(--quiet); font-weight: 400; }
svg { display: block; width: 100%; height: auto; }
svg text { fill: var(--quiet); font-size: 13px; font-variant-numeric: tabular-nums; }
.grid { stroke: var(--rule); stroke-width: 1; }
.load { --curve: var(--load); } .memory { --curve: var(--memory); }
.line { fill: none; stroke: var(--curve); stroke-width: 2; stroke-linejoin: round; }
.area { fill: var(--curve); opacity: .14; }
.point { fill: var(--curve); }
.scroll { overflow-x: auto; }
table { width: 100%; border-collapse: collapse; font-variant-numeric: tabular-nums; }
th, td { text-align: left; vertical-align: top; padding: .34rem .9rem .34rem 0;
  border-top: 1px solid var(--rule); }
th:last-child, td:last-child { padding-right: 0; }
tr:first-child > * { border-top: 0; }
thead th { color: var(--quiet); font-weight: 400; font-size: .85rem; }
tbody th { font-weight: 400; color: var(--quiet); }
thead + tbody tr:first-child > * { border-top: 1px solid var(--rule); }
td { overflow-wrap: anywhere; }
.pairs tbody th { width: 42%; }
.columns td { min-width: 5.5rem; }
@media (max-width: 40rem) {
  main { padding: 1.2rem .8rem 2rem; } h1 { font-size: 1.35rem; } .card { padding: .85rem .9rem; }
  dl { grid-template-columns: 1fr 1fr; } dd { font-size: 1.15rem; } }
@media print { body { background: none; } .card { break-inside: avoid; } }
)";

} // namespace SystemReport
