import { Component, type ComponentType, type JSX } from "preact";

function differ<P extends object>(one: P, other: P): boolean {
  const names = Object.keys(one) as (keyof P)[];
  return names.length !== Object.keys(other).length || names.some((name) => one[name] !== other[name]);
}

/** A part that is drawn anew only when one of its properties has changed. */
export function memo<P extends object>(Part: ComponentType<P>): ComponentType<P> {
  return class Memo extends Component<P> {
    override shouldComponentUpdate(next: P): boolean {
      return differ(this.props as P, next);
    }

    override render(): JSX.Element {
      return <Part {...(this.props as P)} />;
    }
  };
}
