// Colours of fields come as the number 0xBBGGRR; -1 leaves the colour to the page.
import type { JSX } from "preact";

const pageChoice = -1;
const named: Record<number, string> = { 255: "red", 49152: "green", 65280: "green" };

export function isLit(colour: number): boolean {
  return colour !== pageChoice;
}

// A class for the colours that mean something everywhere, with a blank before it.
export function colourClass(colour: number): string {
  return isLit(colour) ? ` lit lit-${named[colour] ?? "own"}` : "";
}

// Any other colour is handed to the style sheet as it is.
export function colourStyle(colour: number): JSX.CSSProperties | undefined {
  if (!isLit(colour) || named[colour] !== undefined) {
    return undefined;
  }
  return { "--lit": `rgb(${colour & 255}, ${(colour >> 8) & 255}, ${(colour >> 16) & 255})` } as JSX.CSSProperties;
}
