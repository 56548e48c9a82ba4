// SPDX-License-Identifier: MIT
// The style of the timeline's picture: it belongs to the picture in the page and goes with it when it is saved.

export const style = `
.timeline-svg { --ground: #ffffff; --band: #f1f4f8; --text: #1c2430; --faint: #7a8494; --grid: #d5dbe3; --key: #1f5196;
  --repeat: #ffffff; --hold: #8f4700; --window: #62408c; --announcement: #0d6338; --refusal: #a8172f; --speech: #1c2430;
  --command: #45536b; font: 12px system-ui, sans-serif; background: var(--ground); display: block; }
.timeline-svg text { fill: var(--text); }
.timeline-svg .muted { fill: var(--text); opacity: 0.85; }
.timeline-svg .band { fill: var(--band); }
.timeline-svg .grid { stroke: var(--grid); fill: none; }
.timeline-svg .edge { stroke: var(--faint); stroke-dasharray: 2 3; fill: none; }
.timeline-svg .break { stroke: var(--refusal); stroke-width: 2; stroke-dasharray: 6 4; fill: none; }
.timeline-svg .key { fill: var(--key); }
.timeline-svg .unheard { fill: none; stroke: var(--key); stroke-dasharray: 3 2; }
.timeline-svg .repeat { stroke: var(--repeat); fill: none; }
.timeline-svg .hold { fill: url(#timeline-stripes); stroke: var(--hold); }
.timeline-svg .stripe { stroke: var(--hold); stroke-width: 2; }
.timeline-svg .hold-end { stroke: var(--hold); stroke-width: 2; fill: var(--ground); }
.timeline-svg .fired { fill: var(--hold); }
.timeline-svg .window { fill: url(#timeline-dots); stroke: var(--window); }
.timeline-svg .dot { fill: var(--window); }
.timeline-svg .restart { stroke: var(--window); stroke-width: 2; fill: none; }
.timeline-svg .announcement { fill: var(--announcement); stroke: none; }
.timeline-svg .refusal { stroke: var(--refusal); stroke-width: 2.5; fill: none; }
.timeline-svg .speech { fill: var(--ground); stroke: var(--speech); stroke-width: 1.5; }
.timeline-svg .command { fill: var(--command); stroke: none; }
.timeline-svg .mark { stroke: var(--text); stroke-width: 2; fill: none; }
.timeline-svg .pointed { stroke-dasharray: 3 2; }
.timeline-svg .heading { stroke: var(--command); stroke-width: 1.5; fill: none; }
@media screen and (prefers-color-scheme: dark) {
  .timeline-svg { --ground: #12171e; --band: #1c242e; --text: #e6ebf2; --faint: #94a0b2; --grid: #323d4b; --key: #79b0ff;
    --repeat: #12171e; --hold: #ffb266; --window: #c7a6f7; --announcement: #5fd39a; --refusal: #ff8f9c; --speech: #e6ebf2;
    --command: #b3c0d4; }
}
@media screen and (forced-colors: active) {
  .timeline-svg { --ground: Canvas; --band: Canvas; --text: CanvasText; --faint: CanvasText; --grid: GrayText;
    --key: Highlight; --repeat: Canvas; --hold: CanvasText; --window: CanvasText; --announcement: CanvasText;
    --refusal: CanvasText; --speech: CanvasText; --command: CanvasText; }
}
`;
