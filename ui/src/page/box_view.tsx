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

// What Escape means. A question has no harmless answer, so there it means nothing.
const escapeOf: Partial<Record<Box["kind"], AnswerName>> = { message: "ok", input: "cancel" };

const kindTitles: Record<Box["kind"], string> = { message: "Message", question: "Question", input: "Input" };

// A box may come up under the hands of a user who is typing; keys pressed right then are not meant for it.
const deafMs = 400;

interface BoxProps {
  box: Box;
  more: number; // boxes that wait below
  linked: boolean;
  send: (message: PageMessage) => void;
}

function useKeyboard(root: { current: HTMLElement | null }) {
  useEffect(() => {
    const first = root.current?.querySelector<HTMLElement>("input, button");
    first?.focus();
    if (first instanceof HTMLInputElement) {
      first.select();
    }
  }, []);
}

function moveFocus(root: HTMLElement, backward: boolean) {
  const stops = [...root.querySelectorAll<HTMLElement>("input, button")];
  const at = stops.indexOf(document.activeElement as HTMLElement);
  const last = stops.length - 1;
  stops[backward ? (at <= 0 ? last : at - 1) : at >= last ? 0 : at + 1]?.focus();
}

export function BoxView({ box, more, linked, send }: BoxProps) {
  const root = useRef<HTMLDivElement>(null);
  const openedAt = useRef(performance.now());
  const [text, setText] = useState(box.preset);
  useKeyboard(root);

  const answer = (name: AnswerName) =>
    send({ type: "answer", id: box.id, answer: name, ...(box.kind === "input" && name === "ok" ? { text } : {}) });

  const onKeyDown = (event: KeyboardEvent) => {
    const answers = event.key === "Enter" || event.key === " " || event.key === "Escape";
    const escape = escapeOf[box.kind];
    if (answers && performance.now() - openedAt.current < deafMs) {
      event.preventDefault();
    } else if (event.key === "Escape") {
      event.preventDefault();
      if (escape) {
        answer(escape);
      }
    } else if (event.key === "Enter" && event.target instanceof HTMLInputElement) {
      event.preventDefault();
      answer("ok");
    } else if (event.key === "Tab" && root.current) {
      event.preventDefault();
      moveFocus(root.current, event.shiftKey);
    }
  };

  return (
    <div class="veil">
      <div
        ref={root}
        class={`box box-${box.kind}`}
        role="alertdialog"
        aria-modal="true"
        aria-label={kindTitles[box.kind]}
        aria-describedby="box-text"
        data-box={box.id}
        data-kind={box.kind}
        onKeyDown={onKeyDown}
      >
        <p id="box-text" class="box-text">
          {box.text.replace(/\r\n?/g, "\n")}
        </p>
        {box.kind === "input" && (
          <input
            type="text"
            aria-labelledby="box-text"
            autocomplete="off"
            spellcheck={false}
            value={text}
            onInput={(event) => setText(event.currentTarget.value)}
          />
        )}
        <div class="box-foot">
          <span class="box-more">{more === 0 ? "" : more === 1 ? "1 more waits behind" : `${more} more wait behind`}</span>
          {answersOf[box.kind].map(({ name, answer: given }, index) => (
            <button
              type="button"
              key={name}
              class={index === 0 ? "command command-first" : "command"}
              disabled={!linked}
              onClick={() => answer(given)}
            >
              {name}
            </button>
          ))}
        </div>
      </div>
    </div>
  );
}
