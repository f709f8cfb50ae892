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
  grid-template-columns: repeat(auto-fit, minmax(min(100%, 21rem), 1fr));
}
article { display: flex; flex-direction: column; background: var(--card); border: 1px solid var(--line); border-radius: .75rem; overflow: hidden; }
.picture { display: block; background: #000; }
.picture img { display: block; width: 100%; height: auto; }
.text { flex: 1; display: grid; grid-template-rows: 1fr; gap: .9rem; padding: 1rem 1.15rem 1.15rem; }
.caption { margin-top: .25rem; color: var(--soft); }
.scale { display: flex; align-items: center; gap: .6rem; }
.scale i { flex: 1; height: .6rem; border: 1px solid var(--line); border-radius: .3rem;
  background: linear-gradient(to right, #000, #fff); }
.scale, dt, dd, .files { font-size: .875rem; font-variant-numeric: tabular-nums; }
dl { display: grid; grid-template-columns: repeat(auto-fill, minmax(6.6rem, 1fr)); gap: .7rem; margin: 0;
  padding-top: .9rem; border-top: 1px solid var(--line); }
dt { color: var(--soft); }
dd { margin: 0; font-weight: 600; white-space: nowrap; }
.files { display: flex; flex-wrap: wrap; gap: .25rem 1.1rem; }
footer { color: var(--soft); font-size: .875rem; max-width: 42rem; }
@media print { article { break-inside: avoid; } }
)";

}  // namespace Radiograph

#endif
