import type { ComponentType } from "preact";

import type { Instrument, Values } from "../protocol";

export interface FaceProps {
  instrument: Instrument;
  values: Values;
  /** Sends a command line to the bench: a knob turned, a switch set. */
  command(line: string): void;
}

/** How one family of instruments is drawn. */
export interface Face {
  component: ComponentType<FaceProps>;
  /** Width of the drawing against a small gauge. */
  size(instrument: Instrument): "small" | "large" | "wide" | "board";
}
