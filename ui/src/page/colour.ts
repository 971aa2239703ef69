// Colours of fields come as the number 0xBBGGRR; -1 leaves the colour to the page.

export type Lamp = "none" | "red" | "green" | "other";

export function lampOf(colour: number): Lamp {
  switch (colour) {
    case -1:
      return "none";
    case 255:
      return "red";
    case 49152:
    case 65280:
      return "green";
    default:
      return "other";
  }
}

export function cssColour(colour: number): string {
  return `rgb(${colour & 255}, ${(colour >> 8) & 255}, ${(colour >> 16) & 255})`;
}
