import type { JSX } from 'solid-js';

/** Drawn on a grid of 16, in the colour of the text around them. */
function Icon(props: { children: JSX.Element }): JSX.Element {
  return (
    <svg class="icon" viewBox="0 0 16 16" aria-hidden="true">
      {props.children}
    </svg>
  );
}

export function CopyIcon(): JSX.Element {
  return (
    <Icon>
      <rect x="5.5" y="5.5" width="8" height="8" rx="1.5" />
      <path d="M10.5 5.5v-1.5a1.5 1.5 0 0 0-1.5-1.5h-5a1.5 1.5 0 0 0-1.5 1.5v5a1.5 1.5 0 0 0 1.5 1.5h1.5" />
    </Icon>
  );
}

/** A copy with lines of text on it. */
export function CopyTextIcon(): JSX.Element {
  return (
    <Icon>
      <rect x="5.5" y="5.5" width="8" height="8" rx="1.5" />
      <path d="M10.5 5.5v-1.5a1.5 1.5 0 0 0-1.5-1.5h-5a1.5 1.5 0 0 0-1.5 1.5v5a1.5 1.5 0 0 0 1.5 1.5h1.5" />
      <path d="M7.5 8.3h4M7.5 10.7h4" />
    </Icon>
  );
}

export function WarningIcon(): JSX.Element {
  return (
    <Icon>
      <path d="M8 2.2 14.4 13.4H1.6Z" />
      <path d="M8 6.4v3.2" />
      <path d="M8 11.6v.1" />
    </Icon>
  );
}

export function ChevronIcon(): JSX.Element {
  return (
    <Icon>
      <path d="m6 3.8 4.2 4.2L6 12.2" />
    </Icon>
  );
}

export function MinusIcon(): JSX.Element {
  return (
    <Icon>
      <path d="M3.5 8h9" />
    </Icon>
  );
}

export function PlusIcon(): JSX.Element {
  return (
    <Icon>
      <path d="M3.5 8h9M8 3.5v9" />
    </Icon>
  );
}

/** Corners around all there is. */
export function WholeIcon(): JSX.Element {
  return (
    <Icon>
      <path d="M2.5 6v-3.5h3.5M10 2.5h3.5v3.5M13.5 10v3.5h-3.5M6 13.5h-3.5v-3.5" />
    </Icon>
  );
}

/** A few cells with one of them chosen. */
export function SheetPicture(): JSX.Element {
  return (
    <svg class="picture" viewBox="0 0 96 64" aria-hidden="true">
      <rect class="pictureSheet" x="1" y="1" width="94" height="62" rx="6" />
      <path class="pictureLines" d="M1 17h94M1 32.5h94M1 48h94M25 1v62M49 1v62M73 1v62" />
      <rect class="pictureCell" x="49" y="32.5" width="24" height="15.5" rx="2" />
    </svg>
  );
}

export function GridIcon(): JSX.Element {
  return (
    <Icon>
      <rect x="2.5" y="3.5" width="11" height="9" rx="1" />
      <path d="M2.5 8h11M8 3.5v9" />
    </Icon>
  );
}

export function CloseIcon(): JSX.Element {
  return (
    <Icon>
      <path d="m4 4 8 8M12 4l-8 8" />
    </Icon>
  );
}

export function GearIcon(): JSX.Element {
  return (
    <Icon>
      <circle cx="8" cy="8" r="2.2" />
      <path d="M8 1.8v2M8 12.2v2M1.8 8h2M12.2 8h2M3.6 3.6 5 5M11 11l1.400 1.400M3.600 12.400 5 11M11 5l1.400-1.400" />
    </Icon>
  );
}

export function WidthIcon(): JSX.Element {
  return (
    <Icon>
      <path d="M2.5 8h11M5.5 5l-3 3 3 3M10.5 5l3 3-3 3" />
    </Icon>
  );
}

export function PinIcon(): JSX.Element {
  return (
    <Icon>
      <path d="M6 2.5h4l-.5 4.5 2.5 2.5H4L6.500 7ZM8 9.500v4.500" />
    </Icon>
  );
}

export function DetailsIcon(): JSX.Element {
  return (
    <Icon>
      <rect x="2.5" y="3" width="11" height="10" rx="1.5" />
      <path d="M2.5 9h11M5 11h6" />
    </Icon>
  );
}
