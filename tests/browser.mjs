// Opens pages in Debian's Chromium and works their controls. Reads from standard input
//   {"modules": folder, "pages": [{"url": …, "visit": […], "cases": […], "picture": file}]}
// A visit is a list of actions [method, selector, value] of a visitor's mouse and keyboard. A case is a list of
// answers [control, value], which are given through the controls' own events. Prints for each page the state after the
// visit and after each case, the page's text at the end, and the errors that it did not catch.
import { createRequire } from 'node:module';
import { readFileSync } from 'node:fs';

const { modules, pages } = JSON.parse(readFileSync(0, 'utf-8'));
const { chromium } = createRequire(modules + '/')('playwright-core');

// Runs within the page: gives the answers of all cases, and returns the state after each.
function work(cases) {
  const fire = (element, name) => element.dispatchEvent(new Event(name, { bubbles: true }));
  const give = (name, value) => {
    const control = document.QRVform[name];
    const slider = document.getElementById('range_' + name);
    const field = document.getElementById('value_' + name);
    if (slider) {
      const unknown = document.QRVform['unkown_' + name];
      if (unknown.checked !== (value === null)) unknown.click();
      if (value === null) return;
      const moved = value.slider === undefined ? field : slider;
      moved.value = value.slider ?? value;
      fire(moved, 'input');
    } else if (control.tagName === 'SELECT') {
      control.value = value;
      fire(control, 'change');
    } else {
      document.querySelector(`input[type=radio][name="${name}"][value="${value}"]`).click();
    }
  };
  const texts = (selector, read) => [...document.querySelectorAll(selector)].map(read);
  return cases.map(answers => {
    answers.forEach(([name, value]) => give(name, value));
    return {
      shown: texts('[id$=_total_proba]', e => e.innerHTML),
      bars: texts('.histogramBar', e => e.style.height),
      colours: texts('.histogramBar', e => getComputedStyle(e).backgroundColor),
      sliders: Object.fromEntries(texts('[type=range]', e => [e.id.slice(6), [
        e.value, document.getElementById('value_' + e.id.slice(6)).value]])),
    };
  });
}

const quiet = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync'];
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: quiet });
const results = [];
for (const { url, visit, cases, picture } of pages) {
  const page = await browser.newPage({ viewport: { width: 1120, height: 840 } });
  const errors = [];
  page.on('pageerror', error => errors.push(error.message));
  await page.goto(url);
  for (const [method, ...operands] of visit) await page[method](...operands);
  const states = await page.evaluate(work, [[], ...cases]);
  if (picture) await page.screenshot({ path: picture });
  results.push({ states, text: await page.innerText('body'), errors });
  await page.close();
}
await browser.close();
console.log(JSON.stringify(results));
