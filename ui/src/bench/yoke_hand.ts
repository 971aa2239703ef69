const SHORTEST_PAUSE_MS = 40; // between two commands, of both axes together

/**
 * The hand on a yoke. It says what it does at most 25 times a second; of what it does to one axis the latest counts, and
 * the axes take turns.
 */
export class YokeHand {
  private waiting = new Map<string, number>();
  private latest = new Map<string, number>();
  private timer = 0;
  private saidAt = -Infinity;

  constructor(public say: (control: string, amount: number) => void) {}

  /** Draws or pushes; the same once more is not said again. */
  does(control: string, amount: number): void {
    if (this.latest.get(control) === amount) return;
    this.latest.set(control, amount);
    this.waiting.set(control, amount);
    this.speak();
  }

  letGo(): void {
    this.waiting.clear();
    this.latest.clear();
    this.waiting.set("letGo", 1);
    this.speak();
  }

  /** The page is left: no hand stays behind. */
  leave(): void {
    window.clearTimeout(this.timer);
    this.timer = 0;
    if (this.latest.size > 0) this.say("letGo", 1);
    this.waiting.clear();
    this.latest.clear();
  }

  private speak(): void {
    if (this.timer !== 0) return;
    const pause = SHORTEST_PAUSE_MS - (performance.now() - this.saidAt);
    if (pause > 0) {
      this.timer = window.setTimeout(() => {
        this.timer = 0;
        this.speak();
      }, pause);
      return;
    }
    const [next] = this.waiting;
    if (next === undefined) return;
    this.waiting.delete(next[0]);
    this.saidAt = performance.now();
    this.say(...next);
    if (this.waiting.size > 0) this.speak();
  }
}
