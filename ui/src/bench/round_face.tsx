// A round instrument with controls at its corners.

import type { ComponentChildren, JSX } from "preact";

import { Glass, Layers, RoundCase } from "./svg";

interface RoundFaceProps {
  label: string;
  /** Printed on the dial; stands still. */
  print?: ComponentChildren;
  /** Drawn above it. */
  children: ComponentChildren;
  /** Knobs and switches, by the corner they sit in. */
  corners?: Partial<Record<"bottom-left" | "bottom-right" | "top-left" | "top-right", ComponentChildren>>;
}

export function RoundFace({ label, print, children, corners = {} }: RoundFaceProps): JSX.Element {
  return (
    <div class="round-face">
      <Layers
        label={label}
        fixed={<RoundCase>{print}</RoundCase>}
        moving={
          <>
            {children}
            <Glass />
          </>
        }
      />
      {Object.entries(corners).map(([corner, control]) => (
        <span class={`corner corner-${corner}`} key={corner}>
          {control}
        </span>
      ))}
    </div>
  );
}

interface WindowProps {
  x: number;
  y: number;
  width: number;
  text: string;
  name: string;
  kind?: "lit" | "drum";
}

/** A small window in a dial: digits that light, or a drum that needs no power. */
export function Window({ x, y, width, text, name, kind = "lit" }: WindowProps): JSX.Element {
  return (
    <g class={`window window-${kind}`} transform={`translate(${x} ${y})`}>
      <rect x={-width / 2} y={-8.5} width={width} height={17} rx={2.5} />
      <text data-display={name}>{text}</text>
    </g>
  );
}

/** A warning flag with its letters; out of sight when it is not shown. */
export function WarningFlag({ x, y, text, shown, name }: { x: number; y: number; text: string; shown: boolean; name: string }): JSX.Element {
  return (
    <g class="warning-flag" data-flag={name} data-shown={shown} transform={`translate(${x} ${y})`}>
      <rect x={-17} y={-8} width={34} height={16} rx={2} />
      <text>{text}</text>
    </g>
  );
}
