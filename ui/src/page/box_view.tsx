// The message boxes: the top one is answered first and keeps the keyboard.
import { useEffect, useRef, useState } from "preact/hooks";
import type { Box, PageMessage } from "./protocol";

type AnswerName = "ok" | "yes" | "no" | "cancel";

const answersOf: Record<Box["kind"], { name: string; answer: AnswerName }[]> = {
  message: [{ name: "OK", answer: "ok" }],
  question: [
    { name: "Yes", answer: "yes" },
    { name: "No", answer: "no" },
  ],
  input: [
    { name: "OK", answer: "ok" },
    { name: "Cancel", answer: "cancel" },
  ],
};

// What Escape means.
const escapeOf: Record<Box["kind"], AnswerName> = { message: "ok", question: "no", input: "cancel" };

export function BoxView({ box, more, send }: { box: Box; more: number; send: (message: PageMessage) => void }) {
  const root = useRef<HTMLDivElement>(null);
  const [text, setText] = useState(box.preset);
  const answer = (name: AnswerName) =>
    send({ type: "answer", id: box.id, answer: name, ...(box.kind === "input" ? { text } : {}) });

  useEffect(() => {
    const before = document.activeElement;
    root.current?.querySelector<HTMLElement>("input, button")?.focus();
    return () => (before instanceof HTMLElement ? before.focus() : undefined);
  }, []);

  const onKeyDown = (event: KeyboardEvent) => {
    if (event.key === "Escape") {
      event.preventDefault();
      answer(escapeOf[box.kind]);
    } else if (event.key === "Enter" && event.target instanceof HTMLInputElement) {
      event.preventDefault();
      answer("ok");
    } else if (event.key === "Tab" && root.current) {
      // The keyboard stays inside the box.
      const stops = [...root.current.querySelectorAll<HTMLElement>("input, button")];
      const last = stops.length - 1;
      const at = stops.indexOf(document.activeElement as HTMLElement);
      event.preventDefault();
      stops[event.shiftKey ? (at <= 0 ? last : at - 1) : at >= last ? 0 : at + 1]?.focus();
    }
  };

  return (
    <div class="veil">
      <div
        ref={root}
        class="box"
        role="alertdialog"
        aria-modal="true"
        aria-labelledby="box-text"
        data-box={box.id}
        data-kind={box.kind}
        onKeyDown={onKeyDown}
      >
        <p id="box-text" class="box-text">
          {box.text}
        </p>
        {box.kind === "input" && (
          <input type="text" aria-labelledby="box-text" value={text} onInput={(event) => setText(event.currentTarget.value)} />
        )}
        {more > 0 && <p class="box-more">{more === 1 ? "One more waits below." : `${more} more wait below.`}</p>}
        <div class="box-answers">
          {answersOf[box.kind].map(({ name, answer: given }) => (
            <button type="button" key={name} class="command" onClick={() => answer(given)}>
              {name}
            </button>
          ))}
        </div>
      </div>
    </div>
  );
}
