// Screenshots beside those that were found good. Compared are means over blocks of ten by ten
// pixels, so that fonts that differ by a hair between machines do not matter, while anything moved,
// missing or of another colour does. What is kept is those means, as small pictures.
//
// QUORIN_KEEP_PICTURES=1 keeps what is seen now as good. The whole screenshots are in out/screens.

import { existsSync } from 'node:fs';
import { mkdir, readFile, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';

import type { Page } from 'playwright-core';

import type { Browser, FakePanel } from './FakePanel';

const screens = fileURLToPath(new URL('../../out/screens', import.meta.url));
const good = fileURLToPath(new URL('./pictures', import.meta.url));
const keep = process.env.QUORIN_KEEP_PICTURES === '1';

/** A block differs when its mean colour is further away than this, of 255. */
const blockTolerance = 26;
/** So many of all blocks may differ. */
const shareTolerance = 0.02;

export class Pictures {
  private constructor(private readonly page: Page) {}

  static async start(browser: Browser): Promise<Pictures> {
    await mkdir(screens, { recursive: true });
    await mkdir(good, { recursive: true });
    return new Pictures(await browser.blank());
  }

  /** What is different, in words; empty where nothing is. */
  async compare(panel: FakePanel, name: string): Promise<string> {
    const screen = await panel.page.screenshot({
      path: join(screens, `${name}.png`),
      caret: 'hide',
      animations: 'disabled',
    });
    const file = join(good, `${name}.png`);
    const before = existsSync(file) && !keep ? (await readFile(file)).toString('base64') : '';
    const { blocks, share } = await this.page.evaluate(measure, {
      screen: screen.toString('base64'),
      before,
      tolerance: blockTolerance,
    });
    if (keep) await writeFile(file, Buffer.from(blocks, 'base64'));
    else if (before === '') return `${name}: no picture was found good yet`;
    return share > shareTolerance ? `${name}: ${(share * 100).toFixed(1)} % differ` : '';
  }
}

/** Runs in a page: a screenshot's blocks as a picture, and how many differ from those before. */
async function measure(given: {
  screen: string;
  before: string;
  tolerance: number;
}): Promise<{ blocks: string; share: number }> {
  const block = 10;
  const load = async (data: string): Promise<HTMLImageElement> => {
    const image = new Image();
    image.src = `data:image/png;base64,${data}`;
    await image.decode();
    return image;
  };
  const pixels = (image: HTMLImageElement) => {
    const canvas = document.createElement('canvas');
    canvas.width = image.width;
    canvas.height = image.height;
    const context = canvas.getContext('2d', { willReadFrequently: true });
    if (!context) throw new Error('no canvas');
    context.drawImage(image, 0, 0);
    return context.getImageData(0, 0, image.width, image.height);
  };
  const whole = pixels(await load(given.screen));
  const width = Math.floor(whole.width / block);
  const height = Math.floor(whole.height / block);
  const small = new ImageData(width, height);
  for (let y = 0; y < height; y++) {
    for (let x = 0; x < width; x++) {
      for (let channel = 0; channel < 3; channel++) {
        let sum = 0;
        for (let dy = 0; dy < block; dy++) {
          for (let dx = 0; dx < block; dx++) {
            sum += whole.data[((y * block + dy) * whole.width + x * block + dx) * 4 + channel] ?? 0;
          }
        }
        small.data[(y * width + x) * 4 + channel] = Math.round(sum / (block * block));
      }
      small.data[(y * width + x) * 4 + 3] = 255;
    }
  }
  const canvas = document.createElement('canvas');
  canvas.width = width;
  canvas.height = height;
  canvas.getContext('2d')?.putImageData(small, 0, 0);
  const blocks = canvas.toDataURL('image/png').split(',')[1] ?? '';
  if (given.before === '') return { blocks, share: 0 };
  const before = pixels(await load(given.before));
  if (before.width !== width || before.height !== height) return { blocks, share: 1 };
  let different = 0;
  for (let i = 0; i < width * height; i++) {
    const away = [0, 1, 2].map((channel) =>
      Math.abs((small.data[i * 4 + channel] ?? 0) - (before.data[i * 4 + channel] ?? 0)),
    );
    if (Math.max(...away) > given.tolerance) different += 1;
  }
  return { blocks, share: different / (width * height) };
}
