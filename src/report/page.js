// The report page: a spectrum that zooms, and atoms, signals and rows of the tables that show what belongs together.
(() => {
  'use strict';
  const data = JSON.parse(document.getElementById('data').textContent);
  const svg = document.getElementById('spectrum');
  const told = document.getElementById('told');
  const make = (name, attributes, parent, text) => {
    const element = document.createElementNS('http://www.w3.org/2000/svg', name);
    for (const key in attributes) element.setAttribute(key, attributes[key]);
    if (text !== undefined) element.textContent = text;
    return parent.appendChild(element);
  };

  // What belongs together: signals by their places in data.signals.
  let shown = [];
  let pinned = [];
  let scene = null;  // what is drawn of the spectrum
  const same = (a, b) => a.length === b.length && a.every((each, place) => each === b[place]);
  const signalsOf = (element) => element.dataset.s.split(' ').map(Number);
  function show(signals) {
    if (same(shown, signals)) return;
    shown = signals;
    mark();
    markSpectrum();
    told.textContent = signals.map((each) => data.signals[each].told).join('; ');
  }
  function mark() {
    for (const element of document.querySelectorAll('[data-s]')) {
      const own = signalsOf(element);
      const wide = element.classList.contains('atom') || own.length === 1;
      const on = shown.length > 0 && (wide ? own.some((each) => shown.includes(each)) : same(own, shown));
      element.classList.toggle('on', on);
    }
    for (const element of document.querySelectorAll('[aria-pressed]')) {
      const own = signalsOf(element.closest('[data-s]'));
      element.setAttribute('aria-pressed', String(pinned.length > 0 && same(own, pinned)));
    }
  }
  function pin(signals) {
    pinned = same(pinned, signals) ? [] : signals;
    show(pinned);
    mark();
  }
  const stops = 'g[role=button], th button';
  function link(root) {
    root.querySelectorAll('th button').forEach((each, place) => each.setAttribute('tabindex', place === 0 ? 0 : -1));
    const at = (event) => event.target.closest('[data-s]');
    root.addEventListener('pointerover', (event) => { if (at(event)) show(signalsOf(at(event))); });
    root.addEventListener('pointerout', (event) => { if (at(event)) show(pinned); });
    root.addEventListener('focusin', (event) => { if (at(event)) show(signalsOf(at(event))); });
    root.addEventListener('focusout', () => show(pinned));
    root.addEventListener('click', (event) => { if (at(event)) pin(signalsOf(at(event))); });
    // One stop of the tab key for all; the arrows go from one to the next.
    root.addEventListener('keydown', (event) => {
      const own = event.target.closest(stops);
      if (!own) return;
      if (own.localName === 'g' && (event.key === 'Enter' || event.key === ' ')) {
        event.preventDefault();
        return pin(signalsOf(own));
      }
      const step = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 }[event.key];
      if (!step) return;
      event.preventDefault();
      event.stopPropagation();
      const all = [...root.querySelectorAll(stops)];
      const next = all[(all.indexOf(own) + step + all.length) % all.length];
      own.setAttribute('tabindex', -1);
      next.setAttribute('tabindex', 0);
      next.focus();
    });
  }
  document.querySelectorAll('.structure, table').forEach(link);
  document.addEventListener('keydown', (event) => {
    if (event.key === 'Escape') { pinned = []; show([]); mark(); }
  });

  const copy = document.getElementById('copy');
  copy.addEventListener('click', async () => {
    const words = document.getElementById('line').dataset.plain;
    try {
      await navigator.clipboard.writeText(words);
    } catch {
      const field = document.body.appendChild(document.createElement('textarea'));
      field.value = words;
      field.select();
      document.execCommand('copy');
      field.remove();
    }
    copy.textContent = 'Copied';
    setTimeout(() => { copy.textContent = 'Copy'; }, 1500);
  });
  copy.hidden = false;

  if (!svg) return;

  // The spectrum. Shifts fall to the right; view is the window, in ppm.
  for (const curve of data.curves) {
    let place = 0;
    curve.ppm = Float64Array.from(curve.points, (step) => curve.first + (place += step) * curve.step);
    curve.low = curve.ppm[curve.ppm.length - 1];
  }
  const start = data.view;
  const whole = [Math.max(start[0], ...data.curves.map((each) => each.first)),
                 Math.min(start[1], ...data.curves.map((each) => each.low))];
  let view = [...start];
  let box = { width: 900, height: 320 };
  const foot = 34, head = 44;
  const column = (ppm) => (view[0] - ppm) / (view[0] - view[1]) * box.width;
  const ppmAt = (x) => view[0] - x / box.width * (view[0] - view[1]);

  // Of the points in one column the first, the least, the largest and the last are drawn.
  function path(curve) {
    const { ppm, heights } = curve;
    let first = 0;
    for (let high = ppm.length - 1; first < high;) {  // the last point left of the window
      const middle = (first + high + 1) >> 1;
      if (ppm[middle] > view[0]) first = middle; else high = middle - 1;
    }
    let last = first;
    while (last + 1 < ppm.length && ppm[last] >= view[1]) ++last;
    let most = 0;
    for (let k = first; k <= last; ++k) if (ppm[k] <= view[0] && ppm[k] >= view[1]) most = Math.max(most, heights[k]);
    const scale = (box.height - foot - head) / (most || 1);
    const y = (height) => (box.height - foot - height * scale).toFixed(1);
    let words = 'M';
    for (let k = first; k <= last;) {
      const x = column(ppm[k]);
      let next = k, least = heights[k], largest = heights[k];
      while (next + 1 <= last && column(ppm[next + 1]) - x < 0.7) {
        ++next;
        least = Math.min(least, heights[next]);
        largest = Math.max(largest, heights[next]);
      }
      const at = x.toFixed(1);
      words += `${at} ${y(heights[k])} `;
      if (next > k) words += `${at} ${y(least)} ${at} ${y(largest)} ${column(ppm[next]).toFixed(1)} ${y(heights[next])} `;
      k = next + 1;
    }
    return words;
  }
  function axis(parent) {
    const least = (view[0] - view[1]) / Math.max(box.width / 80, 2);
    const power = 10 ** Math.floor(Math.log10(least));
    const step = [1, 2, 5, 10].map((each) => each * power).find((each) => each >= least);
    const digits = Math.max(0, -Math.floor(Math.log10(step) + 1e-9));
    const line = box.height - foot + 4;
    let words = `M0 ${line}H${box.width}`;
    for (let k = Math.ceil(view[1] / step); k * step <= view[0]; ++k) {
      const x = column(k * step);
      words += `M${x.toFixed(1)} ${line}v5`;
      if (x > 14 && x < box.width - 34) make('text', { class: 'tick', x, y: line + 19 }, parent, (k * step).toFixed(digits));
    }
    make('path', { class: 'axis', d: words }, parent);
    make('text', { class: 'tick', x: box.width - 14, y: line + 19 }, parent, 'ppm');
  }
  function labels(parent) {
    const free = [0, 0, 0];
    data.signals.forEach((signal, place) => {
      const x = column(signal.ppm);
      if (x < 0 || x > box.width) return;
      const half = signal.names.length * 3.6 + 5;
      const middle = Math.min(Math.max(x, half), box.width - half);
      const row = free.findIndex((from) => middle - half >= from);
      if (row < 0) return;
      free[row] = middle + half;
      const group = make('g', { class: 'label', 'data-s': place, role: 'button', tabindex: -1, 'aria-pressed': false,
                                'aria-label': signal.told }, parent);
      make('rect', { class: 'box', x: middle - half, y: row * 14, width: 2 * half, height: 14, rx: 3 }, group);
      make('text', { class: 'name', x: middle, y: row * 14 + 11 }, group, signal.names);
    });
    const first = parent.querySelector('.label');
    if (first) first.setAttribute('tabindex', 0);
  }
  function draw() {
    const size = svg.getBoundingClientRect();
    if (size.width > 0 && !matchMedia('print').matches) box = { width: size.width, height: size.height };
    svg.setAttribute('viewBox', `0 0 ${box.width} ${box.height}`);
    const focused = document.activeElement?.closest?.('.label')?.dataset.s;
    svg.replaceChildren();
    scene = { marks: make('g', {}, svg), curves: make('g', {}, svg), over: make('g', {}, svg) };
    for (const curve of data.curves) make('path', { class: `curve ${curve.kind}`, d: path(curve) }, scene.curves);
    axis(svg);
    labels(scene.over);
    scene.band = make('rect', { class: 'band', y: 0, height: box.height - foot, width: 0 }, svg);
    if (focused !== undefined) svg.querySelector(`.label[data-s="${focused}"]`)?.focus();
    mark();
    markSpectrum();
  }
  function markSpectrum() {
    if (!scene) return;
    scene.marks.replaceChildren();
    const room = box.height - foot - head;
    for (const place of shown) {
      const signal = data.signals[place];
      const from = column(signal.high) - 4, to = column(signal.low) + 4;
      make('rect', { class: 'extent', x: from, y: head - 4, width: Math.max(to - from, 0), height: room + 4, rx: 3 }, scene.marks);
      const own = data.lines.filter((line) => line[2] === place);
      const tallest = Math.max(...own.map((line) => line[1]), 1e-9);
      for (const [ppm, height] of own) {
        const x = column(ppm);
        if (x < 0 || x > box.width) continue;
        make('path', { class: 'stick', d: `M${x.toFixed(1)} ${box.height - foot}v${(-0.85 * room * height / tallest).toFixed(1)}` }, scene.marks);
      }
    }
  }
  function look(high, low) {
    const narrowest = 2 / data.mhz;
    const range = Math.min(Math.max(high - low, narrowest), whole[0] - whole[1]);
    const middle = Math.min(Math.max((high + low) / 2, whole[1] + range / 2), whole[0] - range / 2);
    view = [middle + range / 2, middle - range / 2];
    draw();
  }
  const zoom = (factor, at = (view[0] + view[1]) / 2) => look(at + (view[0] - at) * factor, at + (view[1] - at) * factor);
  const pan = (share) => look(...view.map((each) => each + share * (view[0] - view[1])));
  const reset = () => look(...start);

  let drag = null;
  const xOf = (event) => event.clientX - svg.getBoundingClientRect().left;
  svg.addEventListener('pointerdown', (event) => {
    if (event.button === 0) drag = { from: xOf(event), moved: false };
  });
  svg.addEventListener('pointermove', (event) => {
    const x = xOf(event);
    if (drag && (event.buttons & 1)) {
      if (!drag.moved && Math.abs(x - drag.from) < 4) return;
      if (!drag.moved) svg.setPointerCapture(event.pointerId);
      drag.moved = true;
      scene.band.setAttribute('x', Math.min(x, drag.from));
      scene.band.setAttribute('width', Math.abs(x - drag.from));
      return;
    }
    if (event.target.closest('.label')) return;
    show(nearest(x));
  });
  // The signal under the pointer, within six pixels.
  function nearest(x) {
    const reach = 6;
    let best = -1, least = Infinity;
    data.signals.forEach((signal, place) => {
      const middle = (column(signal.high) + column(signal.low)) / 2;
      if (x < column(signal.high) - reach || x > column(signal.low) + reach || Math.abs(x - middle) >= least) return;
      least = Math.abs(x - middle);
      best = place;
    });
    return best < 0 ? pinned : [best];
  }
  svg.addEventListener('pointerup', (event) => {
    const done = drag;
    drag = null;
    if (!done) return;
    if (done.moved) return look(...[ppmAt(done.from), ppmAt(xOf(event))].sort((a, b) => b - a));
    if (event.target.closest('.label')) return;
    const under = nearest(xOf(event));
    if (under !== pinned) pin(under);
  });
  svg.addEventListener('pointercancel', () => { drag = null; draw(); });
  svg.addEventListener('pointerleave', () => { if (!drag) show(pinned); });
  svg.addEventListener('dblclick', () => { pinned = []; reset(); });
  svg.addEventListener('wheel', (event) => {
    const out = event.deltaY > 0;
    if (event.deltaY === 0 || (out && view[0] - view[1] >= whole[0] - whole[1])) return;  // the page scrolls
    event.preventDefault();
    zoom(out ? 1.25 : 0.8, ppmAt(xOf(event)));
  }, { passive: false });
  svg.addEventListener('keydown', (event) => {
    if (event.target !== svg) return;
    const act = { ArrowLeft: () => pan(0.2), ArrowRight: () => pan(-0.2), '+': () => zoom(0.8), '=': () => zoom(0.8),
                  ArrowUp: () => zoom(0.8), '-': () => zoom(1.25), ArrowDown: () => zoom(1.25), 0: reset, Home: reset }[event.key];
    if (!act || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    act();
  });
  link(svg);
  document.getElementById('in').addEventListener('click', () => zoom(0.5));
  document.getElementById('out').addEventListener('click', () => zoom(2));
  document.getElementById('reset').addEventListener('click', reset);
  document.querySelector('.tools').hidden = false;
  new ResizeObserver(draw).observe(svg);
  draw();
})();
