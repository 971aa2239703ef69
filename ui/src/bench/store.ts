import { useLayoutEffect, useState } from "preact/hooks";

import type { Instrument, LineLayout, Message, Values } from "./protocol";

const NO_VALUES: Values = {};

type Listener = () => void;

/**
 * What the page knows of the bench. Every value has its own listeners, so that a needle that moves redraws its own
 * instrument and nothing else.
 */
export class Store {
  lines: LineLayout[] = [];
  instruments: Instrument[] = [];
  connected = false;
  answer = "";
  private values = new Map<string, Values>();
  private listeners = new Map<string, Set<Listener>>();

  take(message: Message): void {
    if (message.type === "beat") return;
    if (message.type === "answer") {
      this.answer = message.text;
      this.tell("answer");
      return;
    }
    if (message.type === "layout") {
      this.lines = message.lines;
      this.instruments = message.instruments;
      this.tell("layout");
    }
    this.merge("line", message.lineValues);
    this.merge("device", message.deviceValues);
  }

  setConnected(connected: boolean): void {
    if (connected === this.connected) return;
    this.connected = connected;
    this.tell("connected");
  }

  get(topic: string): Values {
    return this.values.get(topic) ?? NO_VALUES;
  }

  listen(topic: string, listener: Listener): () => void {
    const set = this.listeners.get(topic) ?? new Set();
    this.listeners.set(topic, set);
    set.add(listener);
    return () => set.delete(listener);
  }

  private merge(kind: string, changes: Record<string, Values> | undefined): void {
    for (const [key, change] of Object.entries(changes ?? {})) {
      const topic = `${kind} ${key}`;
      this.values.set(topic, { ...this.values.get(topic), ...change });
      this.tell(topic);
    }
  }

  private tell(topic: string): void {
    this.listeners.get(topic)?.forEach((listener) => listener());
  }
}

/** Redraws the caller whenever the topic changes. */
export function useTopic(store: Store, topic: string): void {
  const [, redraw] = useState(0);
  // Within the drawing itself: a message that comes between the drawing and a later effect would go unheard.
  useLayoutEffect(() => store.listen(topic, () => redraw((count) => count + 1)), [store, topic]);
}

export function useLineValues(store: Store, port: number): Values {
  useTopic(store, `line ${port}`);
  return store.get(`line ${port}`);
}

export function useDeviceValues(store: Store, key: string): Values {
  useTopic(store, `device ${key}`);
  return store.get(`device ${key}`);
}

export function numberOf(values: Values, name: string): number {
  const value = values[name];
  return typeof value === "number" ? value : 0;
}

/** A number within limits: a drawing must not leave its case, whatever the device says. */
export function limitedOf(values: Values, name: string, low: number, high: number): number {
  return Math.min(high, Math.max(low, numberOf(values, name)));
}

export function textOf(values: Values, name: string): string {
  const value = values[name];
  return typeof value === "string" ? value : "";
}

export function flagOf(values: Values, name: string): boolean {
  return values[name] === true;
}
