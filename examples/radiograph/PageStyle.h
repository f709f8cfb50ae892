// How the page looks: on a phone and on a desk, by day and by night.
#ifndef RADIOGRAPH_PAGESTYLE_H
#define RADIOGRAPH_PAGESTYLE_H

namespace Radiograph {

inline constexpr char kPageStyle[] = R"(
:root {
  color-scheme: light dark;
  --paper: #f4f5f6; --card: #ffffff; --line: #dde0e4; --ink: #1b1f24; --soft: #5c6670; --link: #0b5cad;
}
@media (prefers-color-scheme: dark) {
  :root { --paper: #0f1113; --card: #191c20; --line: #2c3138; --ink: #e8eaed; --soft: #9aa4af; --link: #7db8f5; }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; max-width: 100rem; padding: clamp(1rem, 3vw, 3rem);
  background: var(--paper); color: var(--ink);
  font: 1rem/1.55 system-ui, -apple-system, "Segoe UI", Roboto, sans-serif;
}
h1 { margin: 0; font-size: clamp(1.5rem, 4vw, 2.25rem); line-height: 1.2; overflow-wrap: anywhere; }
h2 { margin: 0; font-size: 1.125rem; }
p { margin: 0; }
a { color: var(--link); }
a:focus-visible { outline: 2px solid var(--link); outline-offset: 2px; }
header p { margin-top: .35rem; max-width: 42rem; color: var(--soft); }
main {
  display: grid; gap: clamp(1rem, 2vw, 1.75rem); margin: clamp(1.25rem, 3vw, 2.25rem) 0;
  grid-template-columns: repeat(auto-fit, minmax(min(100%, 18rem), 1fr));
}
article { display: flex; flex-direction: column; background: var(--card); border: 1px solid var(--line); border-radius: .75rem; overflow: hidden; }
.picture { display: block; position: relative; background: #000; }
.picture img { display: block; width: 100%; height: auto; }
.picture b { position: absolute; transform: translate(-50%, -50%); padding: 0 .4em; border-radius: 1em;
  background: #000b; color: #fff; font-size: .8125rem; line-height: 1.5; }
.text { flex: 1; display: grid; grid-template-rows: 1fr; gap: .9rem; padding: 1rem 1.15rem 1.15rem; }
.caption { margin-top: .25rem; color: var(--soft); }
.scale { display: flex; align-items: center; gap: .6rem; }
.scale i { flex: 1; height: .6rem; border: 1px solid var(--line); border-radius: .3rem;
  background: linear-gradient(to right, #000, #fff); }
.scale, dt, dd, .files, table { font-size: .875rem; font-variant-numeric: tabular-nums; }
dl { display: grid; grid-template-columns: repeat(auto-fill, minmax(7.5rem, 1fr)); gap: .7rem; margin: 0;
  padding-top: .9rem; border-top: 1px solid var(--line); }
dt { color: var(--soft); }
dd { margin: 0; font-weight: 600; white-space: nowrap; }
.files { display: flex; flex-wrap: wrap; gap: .25rem 1.1rem; }
.findings { display: grid; gap: clamp(1rem, 2vw, 1.75rem); margin-bottom: clamp(1.25rem, 3vw, 2.25rem); }
@media (min-width: 64rem) {
  .findings { grid-template-columns: 1fr 1fr; grid-template-rows: max-content 1fr; }
  .findings section:nth-child(2) { grid-column: 2; grid-row: 1 / 3; }
}
section { min-width: 0; padding: 1rem 1.15rem 1.15rem; background: var(--card); border: 1px solid var(--line);
  border-radius: .75rem; }
section > .caption { margin-bottom: .9rem; }
.histogram { display: block; width: 100%; height: 14rem; border-bottom: 1px solid var(--line); margin-bottom: .9rem; }
.histogram path { fill: none; vector-effect: non-scaling-stroke; }
.histogram .counts { fill: var(--line); }
.histogram .smoothed { stroke: var(--link); stroke-width: 1.5; }
.histogram .threshold { stroke: var(--ink); stroke-width: 1; stroke-dasharray: 4 3; }
.wide { overflow-x: auto; }
table { width: 100%; border-collapse: collapse; }
th, td { padding: .35rem .6rem; text-align: right; white-space: nowrap; border-bottom: 1px solid var(--line); }
th { color: var(--soft); font-weight: 400; }
th:first-child, td:first-child { padding-left: 0; text-align: left; }
td i { display: inline-block; width: .8rem; height: .8rem; margin-right: .5rem; border-radius: .2rem; vertical-align: -.05rem; }
.times { grid-template-columns: max-content 1fr; gap: .45rem 1rem; }
.times dd { display: flex; align-items: center; gap: .6rem; }
.times i { flex: 0 1 auto; min-width: 2px; height: .7rem; border-radius: .2rem; background: var(--link); }
footer { display: grid; gap: .5rem; color: var(--soft); font-size: .875rem; max-width: 42rem; }
@media print { article, section { break-inside: avoid; } }
)";

}  // namespace Radiograph

#endif
