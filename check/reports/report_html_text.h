// The fixed parts of the page.
#pragma once

inline constexpr char16_t pageHead[] = uR"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>)";

inline constexpr char16_t reportStyle[] = uR"(<style>
:root { --ink: #1d2733; --soft: #5c6b7f; --line: #dfe5ec; --accent: #2563a8; --below: #b4552d; --pale: #d5e2f1; }
* { box-sizing: border-box; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
body { margin: 0; background: #f3f6f9; color: var(--ink); font: 14px/1.45 system-ui, "DejaVu Sans", sans-serif; }
main { max-width: 1060px; margin: 0 auto; padding: 32px 20px; }
h1 { margin: 0; font-size: 26px; overflow-wrap: anywhere; }
h2 { margin: 32px 0 12px; font-size: 18px; }
h3 { margin: 0 0 6px; font-size: 14px; }
p { margin: 2px 0; }
small, .soft { color: var(--soft); }
article, figure { background: #fff; border: 1px solid var(--line); border-radius: 10px; padding: 14px 16px;
  margin: 0 0 12px; break-inside: avoid; }
.tiles { display: flex; flex-wrap: wrap; gap: 12px; margin-top: 16px; }
.tiles div { background: #fff; border: 1px solid var(--line); border-radius: 10px; padding: 10px 16px; min-width: 120px; }
.tiles b { display: block; font-size: 24px; color: var(--accent); }
.tag { display: inline-block; background: var(--pale); border-radius: 4px; padding: 0 6px; margin-left: 4px;
  font-size: 12px; font-weight: 400; }
ul { margin: 6px 0 0; padding-left: 20px; }
.recodings { display: grid; grid-template-columns: 1fr 1fr; gap: 12px; }
.recodings article { margin: 0; }
table { border-collapse: collapse; width: 100%; font-size: 13px; }
th { text-align: left; font-weight: 400; color: var(--soft); }
td, th { padding: 1px 6px 1px 0; overflow-wrap: anywhere; }
.number { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
.bar { position: relative; width: 36%; min-width: 90px; height: 18px; padding: 0; }
.bar i { position: absolute; top: 3px; bottom: 3px; border-radius: 2px; background: var(--accent); }
.bar i.below { background: var(--below); }
.bar u { position: absolute; top: 0; bottom: 0; width: 1px; background: #9aa8b8; }
svg { display: block; width: 100%; height: auto; }
svg text { font: 11px system-ui, "DejaVu Sans", sans-serif; fill: #5c6b7f; }
@media (max-width: 760px) { .recodings { grid-template-columns: 1fr; } }
@media print { body { background: #fff; font-size: 11px; } main { max-width: none; padding: 0; }
  .recodings { display: block; columns: 2; } .recodings article { margin-bottom: 10px; } }
</style>
)";
