// What is printed on the board of an IO module, and its small lamps.

import type { JSX } from "preact";

const KEYSTROKE = /^<(.*)>$/;

/** A printed name as it is read aloud. */
export function spoken(label: string): string {
  if (label === "") return "not assigned";
  return label.replace(KEYSTROKE, "key $1");
}

/** A name in small print: it may break between its words, and a keystroke is drawn as the key. */
export function Legend({ text }: { text: string }): JSX.Element {
  const key = KEYSTROKE.exec(text);
  if (key !== null) return <kbd class="legend legend-key">{key[1]}</kbd>;
  if (text === "") return <span class="legend" />;
  const words = text.split(/(?<=[a-z0-9/])(?=[A-Z])|(?<=\/)/);
  return (
    <span class="legend" title={text}>
      {words.map((word, index) => [index > 0 && <wbr />, word])}
    </span>
  );
}

/** Lights while the module reports its switch as on. */
export function SwitchLamp({ number, on }: { number: number; on: boolean }): JSX.Element {
  return <span class="switch-lamp" data-switch-lamp={number} data-on={on} aria-hidden="true" />;
}
